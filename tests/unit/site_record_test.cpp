#include "sites/site_record.h"

#include <QTest>

class SiteRecordTest : public QObject {
    Q_OBJECT

private slots:
    void EveryFieldHasItsPlace();
    void TextsAreCutOrPaddedToTheirWidth_data();
    void TextsAreCutOrPaddedToTheirWidth();
    void SlotNumbersAreLittleEndian_data();
    void SlotNumbersAreLittleEndian();
    void AnErasedRecordHasSlotZeroAndBlanks();
    void ReadingRemovesTheBlanksAtBothEndsOnly();
    void TheMarksOfEmptyValuesAreADollarAndADollarWithABlank();
    void TextsStandInTheWindowsPage_data();
    void TextsStandInTheWindowsPage();
    void EveryByteComesBackAsItWas();
    void CharactersOutsideThePageAreQuestionMarks_data();
    void CharactersOutsideThePageAreQuestionMarks();
};

namespace {

QByteArray Padded(const QByteArray& text, qsizetype width)
{
    return text + QByteArray(width - text.size(), ' ');
}

}  // namespace

void SiteRecordTest::EveryFieldHasItsPlace()
{
    const QByteArray record = EncodeSite(7, {"ftp://ftp.example.org", "ann", " se cret "});
    QCOMPARE(record.size(), 372);
    QCOMPARE(record.left(2), QByteArray("\x07\x00", 2));
    QCOMPARE(record.mid(2, 270), Padded("ftp://ftp.example.org", 270));
    QCOMPARE(record.mid(272, 45), Padded("ann", 45));
    QCOMPARE(record.mid(317, 55), Padded(" se cret ", 55));
    QCOMPARE(SlotOf(record), 7);
}

void SiteRecordTest::TextsAreCutOrPaddedToTheirWidth_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("width");
    for (const int length : {0, 1, 44, 45, 46, 54, 55, 56, 269, 270, 271, 300, 1000}) {
        QTest::addRow("address of %d", length) << length << 2 << 270;
        QTest::addRow("user ID of %d", length) << length << 272 << 45;
        QTest::addRow("password of %d", length) << length << 317 << 55;
    }
}

void SiteRecordTest::TextsAreCutOrPaddedToTheirWidth()
{
    QFETCH(int, length);
    QFETCH(int, at);
    QFETCH(int, width);
    const QString text(length, u'x');
    const QByteArray record = EncodeSite(1, {at == 2 ? text : "", at == 272 ? text : "", at == 317 ? text : ""});
    QByteArray wanted = QByteArray("\x01\x00", 2) + QByteArray(370, ' ');
    for (int offset = 0; offset < std::min(length, width); ++offset) wanted[at + offset] = 'x';
    QCOMPARE(record, wanted);
}

void SiteRecordTest::SlotNumbersAreLittleEndian_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("erased") << 0 << QByteArray("\x00\x00", 2);
    QTest::newRow("first") << 1 << QByteArray("\x01\x00", 2);
    QTest::newRow("one byte full") << 255 << QByteArray("\xFF\x00", 2);
    QTest::newRow("second byte") << 256 << QByteArray("\x00\x01", 2);
    QTest::newRow("last") << 32767 << QByteArray("\xFF\x7F", 2);
    QTest::newRow("below zero") << -2 << QByteArray("\xFE\xFF", 2);
}

void SiteRecordTest::SlotNumbersAreLittleEndian()
{
    QFETCH(int, slot);
    QFETCH(QByteArray, bytes);
    const QByteArray record = EncodeSite(static_cast<std::int16_t>(slot), {});
    QCOMPARE(record.left(2), bytes);
    QCOMPARE(SlotOf(record), slot);
}

void SiteRecordTest::AnErasedRecordHasSlotZeroAndBlanks()
{
    QCOMPARE(BlankSite(), QByteArray(2, '\0') + QByteArray(370, ' '));
    QCOMPARE(DecodeSite(BlankSite()), Site());
}

void SiteRecordTest::ReadingRemovesTheBlanksAtBothEndsOnly()
{
    QByteArray record = BlankSite();
    record.replace(2, 12, "  ftp://a b ");
    record.replace(272, 4, "\ta\t ");
    record.replace(368, 4, "  p ");
    QCOMPARE(DecodeSite(record), (Site{"ftp://a b", "\ta\t", "p"}));
}

void SiteRecordTest::TheMarksOfEmptyValuesAreADollarAndADollarWithABlank()
{
    const QByteArray record = EncodeSite(1, {"ftp://a", EmptyUserMark, EmptyPasswordMark});
    QCOMPARE(record.mid(272, 45), Padded("$", 45));
    QCOMPARE(record.mid(317, 55), Padded("$ ", 55));
    QCOMPARE(DecodeSite(record), (Site{"ftp://a", "$", "$"}));
}

void SiteRecordTest::TextsStandInTheWindowsPage_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("Latin letters") << QStringLiteral(u"caf\u00E9 \u00FF\u00C4") << QByteArray("caf\xE9 \xFF\xC4");
    QTest::newRow("euro and quotes") << QStringLiteral(u"\u20AC\u201A\u0192\u201E\u2026\u2020\u2021\u02C6")
                                     << QByteArray("\x80\x82\x83\x84\x85\x86\x87\x88");
    QTest::newRow("per mille and carons")
        << QStringLiteral(u"\u2030\u0160\u2039\u0152\u017D") << QByteArray("\x89\x8A\x8B\x8C\x8E");
    QTest::newRow("curly quotes and dashes") << QStringLiteral(u"\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC")
                                             << QByteArray("\x91\x92\x93\x94\x95\x96\x97\x98");
    QTest::newRow("trade mark and the rest")
        << QStringLiteral(u"\u2122\u0161\u203A\u0153\u017E\u0178") << QByteArray("\x99\x9A\x9B\x9C\x9E\x9F");
    QTest::newRow("undefined") << QStringLiteral(u"\u0081\u008D\u008F\u0090\u009D")
                               << QByteArray("\x81\x8D\x8F\x90\x9D");
    QTest::newRow("no-break space") << QStringLiteral(u"\u00A0") << QByteArray("\xA0");
}

void SiteRecordTest::TextsStandInTheWindowsPage()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(AnsiBytes(text), bytes);
    QCOMPARE(AnsiText(bytes), text);
    QCOMPARE(EncodeSite(1, {"", text, ""}).mid(272, 45), Padded(bytes, 45));
}

void SiteRecordTest::EveryByteComesBackAsItWas()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    QCOMPARE(AnsiText(all).size(), 256);
    QCOMPARE(AnsiBytes(AnsiText(all)), all);
}

void SiteRecordTest::CharactersOutsideThePageAreQuestionMarks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("Greek") << QStringLiteral(u"a\u03B1b") << QByteArray("a?b");
    QTest::newRow("a control character under a defined byte") << QStringLiteral(u"\u0080") << QByteArray("?");
    QTest::newRow("beyond the basic plane, one mark") << QString::fromUtf8("x📁y") << QByteArray("x?y");
    QTest::newRow("half a pair") << QString(QChar(0xD83D)) << QByteArray("?");
}

void SiteRecordTest::CharactersOutsideThePageAreQuestionMarks()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(AnsiBytes(text), bytes);
}

QTEST_GUILESS_MAIN(SiteRecordTest)

#include "site_record_test.moc"
