#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

#include <QtTest>

/// Every kind of transfer, torn at each byte count that matters: nothing, one byte, half, all but one, all. The data
/// connection, the control connection or both end, are reset or fall silent there. Always one clean failure with a
/// sentence, no file damaged, nothing left open, and the next command works.
class TornTransfersTest : public QObject {
    Q_OBJECT

private slots:

    void ATornReceiveLeavesTheOldFile_data() { Tears(); }

    void ATornReceiveLeavesTheOldFile();

    void ATornListingIsNoListing_data() { Tears(); }

    void ATornListingIsNoListing();

    void ATornSendIsNoSuccess_data() { Tears(); }

    void ATornSendIsNoSuccess();

    void LinesMayBeTornAnywhere_data();
    void LinesMayBeTornAnywhere();

private:
    static void Tears();
};

namespace {

constexpr std::size_t Whole = 40;
const std::string Bytes = "0123456789abcdefghijABCDEFGHIJ!.,;:-_+*#";
const std::vector<std::size_t> Counts{0, 1, Whole / 2, Whole - 1, Whole};

enum Costs {
    Nothing,
    TheTimeOut,
    AtMostTheTimeOut,  ///< data that is still open may be waited for, though it can lead nowhere
};

struct Tear {
    const char* Name;
    const char* Steps;
    Costs Cost;
};

const std::vector<Tear> Kinds{
    {"data ends, refused", "-- end\nS: 426 it broke", Nothing},
    {"data reset, refused", "-- break data\nS: 451 it broke", Nothing},
    {"data reset, confirmed", "-- break data\nS: 226 done", Nothing},
    {"data reset, nothing said", "-- break data\n-- silence", TheTimeOut},
    {"data ends, nothing said", "-- end\n-- silence", TheTimeOut},
    {"data stays open, refused", "S: 552 it broke", Nothing},
    {"data stays open, confirmed", "S: 226 done\n-- silence", TheTimeOut},
    {"silence", "-- silence", TheTimeOut},
    {"control ends", "-- close", AtMostTheTimeOut},
    {"control reset", "-- break", AtMostTheTimeOut},
    {"data and control end", "-- end\n-- close", AtMostTheTimeOut},
    {"data and control reset", "-- break data\n-- break", Nothing},
    {"goodbye", "S: 421 going down", Nothing},
    {"half a line", "S+ 226 do\n-- end\n-- close", AtMostTheTimeOut},
};

std::string StringIn(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

/// A transfer of so many bytes and then the tear.
std::string Received(const char* command, const std::string& opening, std::size_t count, const std::string& tear)
{
    const std::string data = count > 0 ? "D: " + Bytes.substr(0, count) + '\n' : std::string();
    return SamplePassive + "C: " + command + "\n-- accept\nS: " + opening + '\n' + data + "-- pause 1\n" + tear;
}

void CheckFailure(Conversation& talk, const Ftp::Outcome& got, int cost)
{
    QVERIFY(!got.Good);
    QVERIFY2(got.Code >= 12000 || (got.Code >= 400 && got.Code < 600), qPrintable(QString::number(got.Code)));
    QVERIFY2(got.Text.size() > 5, got.Text.c_str());
    QVERIFY(got.Reply.empty());
    if (cost == Nothing) QVERIFY(talk.LastDuration < Conversation::Limit);
    if (cost == TheTimeOut) QVERIFY(talk.LastDuration >= Conversation::Limit);
    QVERIFY(talk.LastDuration <= Conversation::Limit + Ftp::Milliseconds(10));
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QCOMPARE(talk.LocalFiles(), (QStringList{"kept", "sent"}));
}

void CheckNextCommand(Conversation& talk)
{
    const bool kept = talk.Session->IsConnected();
    talk.Server.Play((kept ? "" : LogIn) + "C: PWD\nS: 257 \"/\"");
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
    talk.Session->Drop();
    talk.Settle();
    QCOMPARE(talk.Server.OpenLinks(), 0U);
    QVERIFY(!talk.Clock.JumpToNextAlarm());
}

}  // namespace

void TornTransfersTest::Tears()
{
    QTest::addColumn<QString>("tear");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("cost");
    for (const Tear& kind : Kinds) {
        for (const std::size_t count : Counts)
            QTest::addRow("%s after %zu", kind.Name, count) << QString(kind.Steps) << int(count) << int(kind.Cost);
    }
}

void TornTransfersTest::ATornReceiveLeavesTheOldFile()
{
    QFETCH(int, count);
    QFETCH(int, cost);
    const std::string opening = "150 coming (" + std::to_string(Whole) + " bytes)";
    Conversation talk(LogIn + "C: TYPE I\nS: 200 fine\n" +
                      Received("RETR kept", opening, std::size_t(count), StringIn("tear")));
    talk.MakeLocalFile("kept", SampleKept);
    talk.MakeLocalFile("sent", SampleSent);
    const Ftp::Outcome got = talk.Do("GET kept");
    CheckFailure(talk, got, cost);
    if (!QTest::currentTestFailed()) CheckNextCommand(talk);
}

void TornTransfersTest::ATornListingIsNoListing()
{
    QFETCH(int, count);
    QFETCH(int, cost);
    Conversation talk(LogIn + Received("LIST", "150 coming", std::size_t(count), StringIn("tear")));
    talk.MakeLocalFile("kept", SampleKept);
    talk.MakeLocalFile("sent", SampleSent);
    const Ftp::Outcome got = talk.Do("DIR");
    CheckFailure(talk, got, cost);
    if (!QTest::currentTestFailed()) CheckNextCommand(talk);
}

void TornTransfersTest::ATornSendIsNoSuccess()
{
    QFETCH(int, count);
    QFETCH(int, cost);
    const std::string take = "-- take " + std::to_string(count) + '\n';
    Conversation talk(LogIn + "C: TYPE I\nS: 200 fine\n" + SamplePassive +
                      "C: STOR sent\n-- accept\n-- hold data\nS: 150 go on\n" + take + "-- pause 1\n" +
                      StringIn("tear"));
    talk.MakeLocalFile("kept", SampleKept);
    talk.MakeLocalFile("sent", SampleSent + QByteArray(1000, 'x'));
    const Ftp::Outcome got = talk.Do("PUT sent");
    CheckFailure(talk, got, cost);
    if (!QTest::currentTestFailed()) CheckNextCommand(talk);
}

void TornTransfersTest::LinesMayBeTornAnywhere_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("script");
    for (const SampleConversation& row : SampleConversations())
        QTest::newRow(row.Name) << QString(row.Operation) << QString::fromStdString(row.Script);
}

// Each line of the server is cut behind its first byte, in its middle and in front of its end, and the connection ends,
// is reset or falls silent there.
void TornTransfersTest::LinesMayBeTornAnywhere()
{
    const std::string operation = StringIn("operation");
    const std::string script = StringIn("script");
    int torn = 0;
    for (std::size_t at = script.find("S: "); at != std::string::npos; at = script.find("S: ", at + 1)) {
        const std::size_t end = std::min(script.find('\n', at), script.size());
        const std::string line = script.substr(at + 3, end - at - 3);
        for (const std::size_t count : {std::size_t{1}, line.size() / 2, line.size()}) {
            for (const char* tear : {"-- close", "-- break", "-- silence"}) {
                Conversation talk(script.substr(0, at) + "S+ " + line.substr(0, count) + '\n' + tear);
                talk.MakeLocalFile("kept", SampleKept);
                talk.MakeLocalFile("sent", SampleSent);
                const Ftp::Outcome got = talk.Do(operation);
                CheckFailure(talk, got, AtMostTheTimeOut);
                if (!QTest::currentTestFailed()) CheckNextCommand(talk);
                if (QTest::currentTestFailed()) {
                    qWarning("torn after %zu bytes of \"%s\" with %s", count, line.c_str(), tear);
                    return;
                }
                ++torn;
            }
        }
    }
    QVERIFY(torn >= 36);
}

QTEST_GUILESS_MAIN(TornTransfersTest)
#include "torn_transfers_test.moc"
