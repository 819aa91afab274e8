#include "inet/ftp/reply_parser.h"

#include <QByteArray>
#include <QTest>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// A reply as "code|line|line", several parted by a blank line.
std::string Told(Ftp::ReplyParser& parser)
{
    std::string told;
    while (const auto reply = parser.Next()) {
        if (!told.empty()) told += "\n\n";
        told += std::to_string(reply->Code);
        for (const std::string& line : reply->Lines) told += '|' + line;
    }
    return told;
}

std::string Read(std::string_view bytes)
{
    Ftp::ReplyParser parser;
    parser.Feed(bytes);
    return Told(parser);
}

const std::string Transcript = "220-Welcome\r\n\r\n220-\r\nfree text\r\n 220 not yet\r\n230 not yet\r\n220 ready\r\n"
                               "nonsense\r\n\r\r\n331\r\n230 \n"
                               "150 Here it comes\r\n226 Done\r\n257 \"/a\r\r\n211-Features:\n SIZE\n211\n4";
const std::string TranscriptTold = "220|Welcome|||free text| 220 not yet|230 not yet|ready\n\n331|\n\n230|\n\n"
                                   "150|Here it comes\n\n226|Done\n\n257|\"/a\n\n211|Features:| SIZE|";

}  // namespace

class ReplyParserTest : public QObject {
    Q_OBJECT

private slots:
    void RepliesAreRead_data();
    void RepliesAreRead();
    void EverySlicingGivesTheSameReplies();
    void ByteByByteGivesTheSameReplies();
    void TheFirstDigitIsTheKind();
    void TheTextIsTheLinesJoined();
    void ItIsEmptyOnlyBetweenReplies();
    void ALineOfTheLimitIsReadAndOneMoreByteIsRefused();
    void ALineWithoutEndIsRefusedAsSoonAsItIsTooLong();
    void ALongReplyOfTheLimitIsReadAndOneMoreLineIsRefused();
    void AReplyOfTooManyBytesIsRefused();
    void SkippedLinesCountAgainstTheLimits();
    void TheLimitsCountAnewForEachReply();
    void RepliesBeforeAFailureAreStillHandedOut();
};

void ReplyParserTest::RepliesAreRead_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("told");
    const auto row = [](const char* name, const QByteArray& bytes, const QByteArray& told) {
        QTest::newRow(name) << bytes << told;
    };
    row("one line", "220 Hello\r\n", "220|Hello");
    row("many lines with blank ones and the code alone", "230-a\r\n\r\n230-\r\nb\r\n230 c\r\n", "230|a|||b|c");
    row("an indented end is none", "230-a\r\n 230 b\r\n230 c\r\n", "230|a| 230 b|c");
    row("inner lines with another code", "220-a\r\n230 not yet\r\n421 x\r\n227 (127,0,0,2,7,7)\r\n220 b\r\n",
        "220|a|230 not yet|421 x|227 (127,0,0,2,7,7)|b");
    row("inner lines with another code and hyphen", "220-a\r\n230-b\r\n220 c\r\n", "220|a|230-b|c");
    row("closed by another code stays open", "553-no\r\n150 yes\r\n", "");
    row("the end without text", "200-a\r\n200\r\n", "200|a|");
    row("the end with a blank and no text", "200-a\r\n200 \r\n", "200|a|");
    row("the code with a letter behind does not end it", "200-a\r\n200b\r\n200 c\r\n", "200|a|200b|c");
    row("a long line", "220 " + QByteArray(60000, 'x') + "\r\n", "220|" + QByteArray(60000, 'x'));
    row("two replies at once", "150 a\r\n226 b\r\n", "150|a\n\n226|b");
    row("LF alone", "220-a\n220 b\n", "220|a|b");
    row("CR CR LF", "220-a\r\r\n220 b\r\r\n", "220|a|b");
    row("blank lines after each reply", "220 a\r\n\r\n331 b\r\n\r\n", "220|a\n\n331|b");
    row("CR alone ends nothing", "220 a\r331 b\r", "");
    row("CR inside a line stays", "220 a\rb\r\n", "220|a\rb");
    row("control characters are text", QByteArray("220 a\0\x1b\x07\x08%s %1 \\n\r\n", 19),
        QByteArray("220|a\0\x1b\x07\x08%s %1 \\n", 17));
    row("bytes that are no UTF-8", "220 \xff\xfe\xe4\r\n", "220|\xff\xfe\xe4");
    row("a code without text", "331\r\n", "331|");
    row("a code with a blank and no text", "550 \r\n", "550|");
    row("two digits", "20\r\n", "");
    row("four digits", "2000\r\n", "");
    row("letters", "2xx a\r\n", "");
    row("zeros", "000 a\r\n", "");
    row("nines", "999 a\r\n", "");
    row("a six", "631 a\r\n", "");
    row("a tab is no blank", "220\ta\r\n", "");
    row("nothing fits until a reply comes", "hello\r\n 220 a\r\n220 b\r\n", "220|b");
    row("a preliminary one and the real one", "120 wait\r\n220 now\r\n", "120|wait\n\n220|now");
    row("another protocol", "HTTP/1.1 400 Bad Request\r\nServer: x\r\n\r\n", "");
    row("a second hyphen belongs to the text", "220--a\r\n220 - b\r\n", "220|-a|- b");
}

void ReplyParserTest::RepliesAreRead()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, told);
    QCOMPARE(QByteArray::fromStdString(Read(bytes.toStdString())), told);
}

void ReplyParserTest::EverySlicingGivesTheSameReplies()
{
    QCOMPARE(Read(Transcript), TranscriptTold);
    for (std::size_t first = 0; first <= Transcript.size(); ++first) {
        for (std::size_t second = first; second <= Transcript.size(); ++second) {
            Ftp::ReplyParser parser;
            parser.Feed(std::string_view(Transcript).substr(0, first));
            parser.Feed(std::string_view(Transcript).substr(first, second - first));
            parser.Feed(std::string_view(Transcript).substr(second));
            QCOMPARE(Told(parser), TranscriptTold);
            QVERIFY(!parser.Empty());
        }
    }
}

void ReplyParserTest::ByteByByteGivesTheSameReplies()
{
    Ftp::ReplyParser parser;
    for (const char c : Transcript) parser.Feed(std::string_view(&c, 1));
    QCOMPARE(Told(parser), TranscriptTold);
}

void ReplyParserTest::TheFirstDigitIsTheKind()
{
    Ftp::ReplyParser parser;
    parser.Feed("125 a\n250 b\n350 c\n421 d\n599 e\n");
    QCOMPARE(parser.Next()->KindOf(), Ftp::Reply::Preliminary);
    QCOMPARE(parser.Next()->KindOf(), Ftp::Reply::Done);
    QCOMPARE(parser.Next()->KindOf(), Ftp::Reply::NeedMore);
    QCOMPARE(parser.Next()->KindOf(), Ftp::Reply::TryLater);
    QCOMPARE(parser.Next()->KindOf(), Ftp::Reply::Refused);
    QVERIFY(!parser.Next());
}

void ReplyParserTest::TheTextIsTheLinesJoined()
{
    Ftp::ReplyParser parser;
    parser.Feed("211-a\r\n b\r\n\r\n211 c\r\n");
    QCOMPARE(parser.Next()->Text(), std::string("a\n b\n\nc"));
    QCOMPARE(Ftp::Reply().Text(), std::string());
}

void ReplyParserTest::ItIsEmptyOnlyBetweenReplies()
{
    Ftp::ReplyParser parser;
    QVERIFY(parser.Empty());
    parser.Feed("2");
    QVERIFY(!parser.Empty());
    parser.Feed("20-a\r\n");
    QVERIFY(!parser.Empty());
    parser.Feed("220 b\r\n");
    QVERIFY(!parser.Empty());
    QVERIFY(parser.Next());
    QVERIFY(parser.Empty());
    parser.Feed("skipped\r\n");
    QVERIFY(parser.Empty());
}

void ReplyParserTest::ALineOfTheLimitIsReadAndOneMoreByteIsRefused()
{
    const std::string longest = "220 " + std::string(Ftp::ReplyParser::MaxLineBytes - 4, 'x');
    Ftp::ReplyParser parser;
    parser.Feed(longest + '\n');
    QVERIFY(!parser.Failed());
    QCOMPARE(parser.Next()->Lines.front().size(), Ftp::ReplyParser::MaxLineBytes - 4);

    Ftp::ReplyParser whole;
    whole.Feed(longest + "x\n");
    QVERIFY(whole.Failed());
    QVERIFY(!whole.Next());

    Ftp::ReplyParser sliced;
    sliced.Feed(longest);
    sliced.Feed("x");
    QVERIFY(sliced.Failed());
    sliced.Feed("\n220 a\n");
    QVERIFY(!sliced.Next());
}

void ReplyParserTest::ALineWithoutEndIsRefusedAsSoonAsItIsTooLong()
{
    Ftp::ReplyParser parser;
    std::size_t fed = 0;
    const std::string piece(1000, 'y');
    while (!parser.Failed() && fed < 10 * Ftp::ReplyParser::MaxLineBytes) {
        parser.Feed(piece);
        fed += piece.size();
    }
    QVERIFY(parser.Failed());
    QVERIFY(fed <= Ftp::ReplyParser::MaxLineBytes + piece.size());
}

void ReplyParserTest::ALongReplyOfTheLimitIsReadAndOneMoreLineIsRefused()
{
    std::string open = "230-a\r\n";
    for (std::size_t i = 0; i < Ftp::ReplyParser::MaxReplyLines - 2; ++i) open += "text\r\n";
    Ftp::ReplyParser fits;
    fits.Feed(open + "230 b\r\n");
    QVERIFY(!fits.Failed());
    QCOMPARE(fits.Next()->Lines.size(), Ftp::ReplyParser::MaxReplyLines);

    Ftp::ReplyParser fails;
    fails.Feed(open + "text\r\n230 b\r\n");
    QVERIFY(fails.Failed());
    QVERIFY(!fails.Next());
}

void ReplyParserTest::AReplyOfTooManyBytesIsRefused()
{
    Ftp::ReplyParser parser;
    parser.Feed("230-a\n");
    const std::string line = std::string(60000, 'z') + '\n';
    std::size_t fed = 0;
    while (!parser.Failed() && fed < 10 * Ftp::ReplyParser::MaxReplyBytes) {
        parser.Feed(line);
        fed += line.size();
    }
    QVERIFY(parser.Failed());
    QVERIFY(fed <= Ftp::ReplyParser::MaxReplyBytes + line.size());
}

void ReplyParserTest::SkippedLinesCountAgainstTheLimits()
{
    Ftp::ReplyParser parser;
    for (std::size_t i = 0; i < Ftp::ReplyParser::MaxReplyLines; ++i) parser.Feed("\r\n");
    QVERIFY(!parser.Failed());
    parser.Feed("\r\n");
    QVERIFY(parser.Failed());
}

void ReplyParserTest::TheLimitsCountAnewForEachReply()
{
    Ftp::ReplyParser parser;
    for (std::size_t i = 0; i < 3 * Ftp::ReplyParser::MaxReplyLines; ++i) {
        parser.Feed("200 ok\r\n");
        QVERIFY(parser.Next());
    }
    QVERIFY(!parser.Failed());
}

void ReplyParserTest::RepliesBeforeAFailureAreStillHandedOut()
{
    Ftp::ReplyParser parser;
    parser.Feed("200 ok\r\n" + std::string(Ftp::ReplyParser::MaxLineBytes + 1, 'x'));
    QVERIFY(parser.Failed());
    QCOMPARE(parser.Next()->Code, 200);
    QVERIFY(!parser.Next());
}

QTEST_GUILESS_MAIN(ReplyParserTest)
#include "reply_parser_test.moc"
