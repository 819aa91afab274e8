#include "inet/ftp/address.h"

#include <QByteArray>
#include <QTest>
#include <string>

class AddressTest : public QObject {
    Q_OBJECT

private slots:
    void AnAddressFallsIntoItsParts_data();
    void AnAddressFallsIntoItsParts();
    void WhatIsNoAddressIsRefused_data();
    void WhatIsNoAddressIsRefused();
};

void AddressTest::AnAddressFallsIntoItsParts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("told");
    const auto row = [](const QByteArray& text, const QByteArray& told) {
        QTest::newRow(text.constData()) << text << told;
    };
    // scheme | user and password, or - when no user part | host | port | path
    row("ftp.example.com", "|-|ftp.example.com|0|");
    row("ftp://ftp.example.com", "ftp|-|ftp.example.com|0|");
    row("FTP://ftp.example.com/", "ftp|-|ftp.example.com|0|");
    row("ftps://h", "ftps|-|h|0|");
    row("http://h/a?b=c", "http|-|h|0|a?b=c");
    row("ftp://h:2121", "ftp|-|h|2121|");
    row("h:21/pub", "|-|h|21|pub");
    row("h:65535", "|-|h|65535|");
    row("h:1", "|-|h|1|");
    row("h:", "|-|h|0|");
    row("h:0021", "|-|h|21|");
    row("ftp://me@h", "ftp|me:|h|0|");
    row("ftp://me:secret@h", "ftp|me:secret|h|0|");
    row("me:secret@h:2121/pub/a.txt", "|me:secret|h|2121|pub/a.txt");
    row("ftp://@h", "ftp|:|h|0|");
    row("ftp://:p@h", "ftp|:p|h|0|");
    row("ftp://me:@h", "ftp|me:|h|0|");
    row("ftp://me:a:b@h", "ftp|me:a:b|h|0|");
    row("ftp://me@home.org:p@h", "ftp|me@home.org:p|h|0|");
    row("ftp://a@b@h", "ftp|a@b:|h|0|");
    row("ftp://me%40home.org:p%3Aq%2f@h", "ftp|me@home.org:p:q/|h|0|");
    row("ftp://me:100%@h", "ftp|me:100%|h|0|");
    row("ftp://h/a@b", "ftp|-|h|0|a@b");
    row("ftp://h//etc", "ftp|-|h|0|/etc");
    row("ftp://h/%2Fetc", "ftp|-|h|0|/etc");
    row("ftp://h/a%20b", "ftp|-|h|0|a b");
    row("ftp://h/a b", "ftp|-|h|0|a b");
    row("ftp://h/100%", "ftp|-|h|0|100%");
    row("ftp://h/50%2", "ftp|-|h|0|50%2");
    row("ftp://h/%zz", "ftp|-|h|0|%zz");
    row("ftp://h/%2541", "ftp|-|h|0|%41");
    row("ftp://h/%e4%FF", "ftp|-|h|0|\xe4\xff");
    row("ftp://h/\xe4", "ftp|-|h|0|\xe4");
    row("ftp://h/a.bin;type=i", "ftp|-|h|0|a.bin");
    row("ftp://h/a.bin;type=", "ftp|-|h|0|a.bin;type=");
    row("ftp://h/a;type=x", "ftp|-|h|0|a;type=x");
    row("ftp://h/a#1", "ftp|-|h|0|a#1");
    row("h/http://x", "|-|h|0|http://x");
    row("192.0.2.1:21", "|-|192.0.2.1|21|");
    row("ftp://[2001:db8::1]", "ftp|-|2001:db8::1|0|");
    row("ftp://[2001:db8::1]:2121/pub", "ftp|-|2001:db8::1|2121|pub");
    row("me:p@[::1]:21", "|me:p|::1|21|");
    row("[::ffff:192.0.2.1]", "|-|::ffff:192.0.2.1|0|");
    row("[fe80::1%25eth0]", "|-|fe80::1%eth0|0|");
    row("[fe80::1%eth0]", "|-|fe80::1%eth0|0|");
    row("::1", "|-|::1|0|");
    row("  ftp://h/a  ", "ftp|-|h|0|a");
    row("b%C3%BCro", "|-|b\xc3\xbcro|0|");
}

void AddressTest::AnAddressFallsIntoItsParts()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, told);
    const auto address = Ftp::ParseAddress(text.toStdString());
    QVERIFY(address);
    const std::string who = address->HasUser ? address->User + ':' + address->Password : "-";
    QCOMPARE(QByteArray::fromStdString(address->Scheme + '|' + who + '|' + address->Host + '|' +
                                       std::to_string(address->Port) + '|' + address->Path),
             told);
    if (!address->HasUser) {
        QVERIFY(address->User.empty());
        QVERIFY(address->Password.empty());
    }
}

void AddressTest::WhatIsNoAddressIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray texts[] = {"",
                                "  ",
                                "ftp://",
                                "ftp:///pub",
                                "/pub",
                                "ftp://me@",
                                "ftp://me@/pub",
                                "ftp://:21",
                                "ftp://h:0",
                                "ftp://h:65536",
                                "ftp://h:99999999999999999999",
                                "ftp://h:-1",
                                "ftp://h:21x",
                                "ftp://h: 21",
                                "ftp://h\r\nDELE x",
                                "ftp://h/a%0d%0aDELE%20x",
                                "ftp://h/a%0A",
                                "ftp://h/a%00",
                                "ftp://h/a%7f",
                                "ftp://m%0ae@h",
                                "ftp://me:p%0D@h",
                                "ftp://me:p\n@h",
                                "ftp://h%0a",
                                "ftp://h/\x01",
                                "ftp://h%2Fpub",
                                "ftp://h%40evil",
                                "ftp://a b",
                                "ftp://h%zz",
                                "ftp://h?x",
                                "ftp://[::1",
                                "ftp://[::1]x",
                                "ftp://[::1]:0",
                                "ftp://[]",
                                "ftp://[host]",
                                "ftp://[fe80::1%25]x",
                                "ftp://[fe80::1%]",
                                "ftp://[fe80::1%25a b]",
                                "ftp:h",
                                "x:y:z"};
    for (const QByteArray& text : texts) QTest::newRow(("<" + text.toPercentEncoding(":/@[]")).constData()) << text;
}

void AddressTest::WhatIsNoAddressIsRefused()
{
    QFETCH(QByteArray, text);
    QVERIFY(!Ftp::ParseAddress(text.toStdString()));
}

QTEST_GUILESS_MAIN(AddressTest)
#include "address_test.moc"
