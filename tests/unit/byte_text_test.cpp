#include "base/byte_text.h"

#include <QRandomGenerator>
#include <QTest>

class ByteTextTest : public QObject {
    Q_OBJECT

private slots:
    void Utf8IsReadAsItself();
    void EveryByteStringComesBack_data();
    void EveryByteStringComesBack();
    void RandomBytesComeBack();
    void WhatCannotBeShownIsReplaced();
    void LinesAreShownApart();
};

void ByteTextTest::Utf8IsReadAsItself()
{
    QCOMPARE(BytesToText("gr\xC3\xBC\xC3\x9F \xF0\x9F\x93\x81"), QString::fromUtf8("grüß 📁"));
    QCOMPARE(TextToBytes(QString::fromUtf8("grüß 📁")), QByteArray("gr\xC3\xBC\xC3\x9F \xF0\x9F\x93\x81"));
}

void ByteTextTest::EveryByteStringComesBack_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("Latin-1") << QByteArray("caf\xE9");
    QTest::newRow("cut sequence") << QByteArray("\xE2\x82");
    QTest::newRow("overlong") << QByteArray("\xC0\xAF\xE0\x80\xAF");
    QTest::newRow("encoded surrogates") << QByteArray("\xED\xA0\x80\xED\xB2\x80");
    QTest::newRow("above the last code point") << QByteArray("\xF4\x90\x80\x80");
    QTest::newRow("escape after a pair") << QByteArray("\xF0\x9F\x93\x81\x81");
    QTest::newRow("NUL inside") << QByteArray("a\0b", 3);
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBFname");
    QTest::newRow("two marks") << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF");
    QTest::newRow("mark behind another byte") << QByteArray("\xBB\xEF\xBB\xBF;");
    QTest::newRow("mark between lines") << QByteArray("a\r\n\xEF\xBB\xBF"
                                                      "b\r\n");
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    QTest::newRow("all bytes") << all;
}

void ByteTextTest::EveryByteStringComesBack()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(TextToBytes(BytesToText(bytes)), bytes);
}

void ByteTextTest::RandomBytesComeBack()
{
    QRandomGenerator random(1);
    for (int round = 0; round < 20000; ++round) {
        QByteArray bytes(random.bounded(24), 0);
        for (char& byte : bytes) byte = static_cast<char>(random.bounded(256));
        QCOMPARE(TextToBytes(BytesToText(bytes)), bytes);
    }
}

void ByteTextTest::WhatCannotBeShownIsReplaced()
{
    const QString replaced(QChar::ReplacementCharacter);
    QCOMPARE(ShownText(BytesToText("a\xFFz")), "a" + replaced + "z");
    QCOMPARE(ShownText("a\x1B[2Jz"), "a" + replaced + "[2Jz");
    QCOMPARE(ShownText(QString::fromUtf8("a\u202Egpj.exe")), "a" + replaced + "gpj.exe");
    QCOMPARE(ShownText(QString::fromUtf8("📁 ok")), QString::fromUtf8("📁 ok"));
}

void ByteTextTest::LinesAreShownApart()
{
    QCOMPARE(ShownLines("one\r\ntwo\r\n", '\n'), QString("one\ntwo\n"));
    QCOMPARE(ShownLines("one\r\ntwo", ' '), QString("one two"));
    const QString odd = QString("a") + QChar::ReplacementCharacter + 'b';
    QCOMPARE(ShownLines("a\nb\r\na\rb", '|'), odd + '|' + odd);
}

QTEST_GUILESS_MAIN(ByteTextTest)
#include "byte_text_test.moc"
