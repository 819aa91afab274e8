#include "inet/ftp/data_address.h"
#include "inet/ftp/reply_parser.h"

#include <QByteArray>
#include <QTest>
#include <optional>
#include <string>

namespace {

/// The reply that the server's bytes hold; lines parted by LF.
Ftp::Reply Read(const QByteArray& bytes)
{
    Ftp::ReplyParser parser;
    parser.Feed(bytes.toStdString() + '\n');
    return parser.Next().value_or(Ftp::Reply());
}

template <typename Value>
QByteArray Told(const std::optional<Value>& value)
{
    return value ? QByteArray::fromStdString(std::to_string(*value)) : QByteArray("none");
}

QByteArray Told(const std::optional<std::string>& value)
{
    return value ? QByteArray::fromStdString(*value) : QByteArray("none");
}

void Row(const QByteArray& bytes, const QByteArray& told)
{
    QTest::newRow(bytes.left(80).constData()) << bytes << told;
}

void Columns()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("told");
}

}  // namespace

class DataAddressTest : public QObject {
    Q_OBJECT

private slots:
    void APassivePortIsFound_data();
    void APassivePortIsFound();
    void AnExtendedPortIsFound_data();
    void AnExtendedPortIsFound();
    void AFolderIsReadFromItsQuotes_data();
    void AFolderIsReadFromItsQuotes();
    void AnAnnouncedSizeIsFound_data();
    void AnAnnouncedSizeIsFound();
    void ASizeIsReadFromItsFigure_data();
    void ASizeIsReadFromItsFigure();
    void AReplyThatWasNeverReadTellsNothing();
};

void DataAddressTest::APassivePortIsFound_data()
{
    Columns();
    Row("227 Entering Passive Mode (127,0,0,1,7,138)", "1930");
    Row("227 Entering Passive Mode (127,0,0,1,7,138).", "1930");
    Row("227 Entering Passive Mode 127,0,0,1,7,138", "1930");
    Row("227 Entering Passive Mode. 127,0,0,1,7,138.", "1930");
    Row("227 =127,0,0,1,7,138", "1930");
    Row("227 127,0,0,1,7,138", "1930");
    Row("227 (127, 0, 0, 1, 7, 138)", "1930");
    Row("227 ( 127 , 0 , 0 , 1 , 7 , 138 )", "1930");
    Row("227 (127,000,000,001,007,138)", "1930");
    Row("227 Mode 2 of 3 (10,0,0,1,0,21)", "21");
    Row("227 On 1,2,3 at (10,0,0,1,255,255)", "65535");
    Row("227 In 2024, port (10,0,0,1,0,1)", "1");
    Row("227 (0,0,0,0,4,0)", "1024");
    Row("227-Look\n(1,1,1,1,1,1)\n227 Entering (127,0,0,1,7,138)", "1930");
    Row("227-Entering (127,0,0,1,7,138)\n227 End", "none");
    Row("227 Entering Passive Mode (127,0,0,1,7)", "none");
    Row("227 (127,0,0,1,7,138,9)", "none");
    Row("227 (999,0,0,1,7,138)", "none");
    Row("227 (127,0,0,1,7,256)", "none");
    Row("227 (127,0,0,1,-7,138)", "none");
    Row("227 (127.0.0.1.7.138)", "none");
    Row("227 (127,0,0,1,7,)", "none");
    Row("227 (127,0,0,1,99999999999999999999,1)", "none");
    Row("227 (127,0,0,1,0,0)", "none");
    Row("227 Entering Passive Mode", "none");
    Row("227", "none");
    Row("227 " + QByteArray("1,").repeated(20000), "none");
}

void DataAddressTest::APassivePortIsFound()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, told);
    QCOMPARE(Told(Ftp::PassivePort(Read(bytes))), told);
}

void DataAddressTest::AnExtendedPortIsFound_data()
{
    Columns();
    Row("229 Entering Extended Passive Mode (|||6446|)", "6446");
    Row("229 Extended Passive mode OK (|||6446|)", "6446");
    Row("229 (!!!6446!)", "6446");
    Row("229 (---6446-)", "6446");
    Row("229 ok (|2|2001:db8::1|6446|)", "6446");
    Row("229 ok (|1|192.0.2.9|6446|)", "6446");
    Row("229 (see) there (|||65535|).", "65535");
    Row("229 (|||1|)", "1");
    Row("229-first (|||1|)\n229 last (|||2|)", "2");
    Row("229 (|||0|)", "none");
    Row("229 (|||65536|)", "none");
    Row("229 (|||99999999999|)", "none");
    Row("229 (|||-1|)", "none");
    Row("229 (||| 5|)", "none");
    Row("229 (||||)", "none");
    Row("229 (||5|)", "none");
    Row("229 (|||5)", "none");
    Row("229 (|||5|", "none");
    Row("229 (|!|5|)", "none");
    Row("229 (\x01\x01\x01"
        "6446\x01)",
        "none");
    Row("229 (   6446 )", "none");
    Row("229 (127,0,0,1,7,138)", "none");
    Row("229 |||6446|", "none");
    Row("229 (", "none");
    Row("229", "none");
}

void DataAddressTest::AnExtendedPortIsFound()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, told);
    QCOMPARE(Told(Ftp::ExtendedPort(Read(bytes))), told);
}

void DataAddressTest::AFolderIsReadFromItsQuotes_data()
{
    Columns();
    Row("257 \"/\" is the current directory", "/");
    Row("257 \"/home/me\" created", "/home/me");
    Row("257 \"/home/me\"", "/home/me");
    Row("257 Current directory is \"/pub\".", "/pub");
    Row("257 \"C:\\Inetpub\" ok", "C:\\Inetpub");
    Row("257 \"/a\"\"b\" is it", "/a\"b");
    Row("257 \"/\"\"\"\"\" is it", "/\"\"");
    Row("257 \"/a\"b\" is it", "/a\"b");
    Row("257 \"/it\"s \"mine\"\" is it", "/it\"s \"mine\"");
    Row("257 \"/a\"b\"", "/a\"b");
    Row("257 \"/a\"b", "/a");
    Row("257 \"/a\" b\" is it", "/a");
    Row("257 \"/a\", \"b\"", "/a");
    Row("257 \"/a b\" \"c\"", "/a b");
    Row("257 \"/\xff\xe4\" is it", "/\xff\xe4");
    Row("257-Hello\n257 \"/pub\"", "/pub");
    Row("257 \"/" + QByteArray(20000, 'x') + "\"", "/" + QByteArray(20000, 'x'));
    Row("257 /home/me", "none");
    Row("257 \"\" is the current directory", "none");
    Row("257 \"/unterminated", "none");
    Row("257 \"/unterminated\"\"", "none");
    Row("257-\"/over\n257 two\" lines", "none");
    Row("257 \"", "none");
    Row("257", "none");
}

void DataAddressTest::AFolderIsReadFromItsQuotes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, told);
    QCOMPARE(Told(Ftp::QuotedPath(Read(bytes))), told);
}

void DataAddressTest::AnAnnouncedSizeIsFound_data()
{
    Columns();
    Row("150 Opening BINARY mode data connection for a.txt (1234 bytes).", "1234");
    Row("150 Opening data connection for a (1).txt (1234 bytes)", "1234");
    Row("150 Data (0 bytes)", "0");
    Row("150 Data (1 byte)", "1");
    Row("150 Data (5 Bytes)", "5");
    Row("150-First (1 bytes)\n150 Then (2 bytes)", "1");
    Row("150 Data (18446744073709551615 bytes)", "18446744073709551615");
    Row("150 Data (18446744073709551616 bytes)", "none");
    Row("150 Data (-1 bytes)", "none");
    Row("150 Data (1.2 bytes)", "none");
    Row("150 Data (1234bytes)", "none");
    Row("150 Data (12 kbytes)", "none");
    Row("150 Data (12 by", "none");
    Row("150 Data 1234 bytes", "none");
    Row("150 Here it comes", "none");
    Row("150", "none");
}

void DataAddressTest::AnAnnouncedSizeIsFound()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, told);
    QCOMPARE(Told(Ftp::AnnouncedSize(Read(bytes))), told);
}

void DataAddressTest::ASizeIsReadFromItsFigure_data()
{
    Columns();
    Row("213 1234", "1234");
    Row("213 0", "0");
    Row("213 4294967296", "4294967296");
    Row("213 18446744073709551615", "18446744073709551615");
    Row("213 size is 1234 bytes", "1234");
    Row("213 00012", "12");
    Row("213-12\n34\n213 56", "56");
    Row("213-12\n213 End", "none");
    Row("213 18446744073709551616", "none");
    Row("213 99999999999999999999999999", "none");
    Row("213 -1", "none");
    Row("213 many", "none");
    Row("213 ", "none");
    Row("213", "none");
}

void DataAddressTest::ASizeIsReadFromItsFigure()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, told);
    QCOMPARE(Told(Ftp::SizeFigure(Read(bytes))), told);
}

void DataAddressTest::AReplyThatWasNeverReadTellsNothing()
{
    const Ftp::Reply none;
    QVERIFY(!Ftp::PassivePort(none));
    QVERIFY(!Ftp::ExtendedPort(none));
    QVERIFY(!Ftp::QuotedPath(none));
    QVERIFY(!Ftp::AnnouncedSize(none));
    QVERIFY(!Ftp::SizeFigure(none));
}

QTEST_GUILESS_MAIN(DataAddressTest)
#include "data_address_test.moc"
