#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// The size of a file is asked for with the rest of the preparation, and compared when the file is here or there.
class SizesTest : public QObject {
    Q_OBJECT

private slots:
    void AFileOfItsSizeIsConfirmed();
    void AFileBelowItsSizeIsNoSuccess();
    void AFileThatHasShrunkMeanwhileIsWhole();
    void AFileBeyondItsSizeIsKeptUnconfirmed();
    void TheSizeCountsForMoreThanTheAnnouncement();
    void AnUnknownSizeIsNoError_data();
    void AnUnknownSizeIsNoError();
    void AnUnknownCommandIsNotSentAgain();
    void AServerThatLeavesInsteadOfASizeIsOneCleanFailure();
    void ASentFileIsCompared();
    void ASentFileThatIsShortIsNoSuccess();
    void ASentFileIsNotAskedForWhereItDoesNotPay();
    void AConnectionLostBehindTheConfirmationIsNoFailure();
};

namespace {

std::string Get(const std::string& size)
{
    return LogIn + "C: TYPE I\nS: 200 fine\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: SIZE kept\nS: " + size +
           "\nC: RETR kept\n-- accept\nS: 150 coming\nD: bytes\n-- end\nS: 226 done\n";
}

const std::string LargeText(70'000, 'x');

std::string PutAfterGet(const std::string& behind)
{
    return Get("213 5") +
           "C: EPSV\nS: 229 (|||4002|)\n-- listen 4002\nC: STOR sent\n-- accept\nS: 150 go\nU: " + LargeText +
           "\nS: 226 stored\n" + behind;
}

struct StrictConversation : Conversation {
    explicit StrictConversation(const std::string& script) : Conversation(script) { Server.SetStrict(true); }
};

}  // namespace

void SizesTest::AFileOfItsSizeIsConfirmed()
{
    StrictConversation talk(Get("213 5"));
    const Ftp::Outcome got = talk.Do("GET kept");
    QVERIFY_GOOD(got);
    QVERIFY(got.Transferred);
    QCOMPARE(got.Transferred->Bytes, std::uint64_t{5});
    QVERIFY(got.Transferred->BySize);
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::AFileBelowItsSizeIsNoSuccess()
{
    StrictConversation talk(Get("213 6") + "C: SIZE kept\nS: 213 6");
    talk.MakeLocalFile("kept", "old");
    const Ftp::Outcome got = talk.Do("GET kept");
    QCOMPARE_FAILED(got, Ftp::ResponseError);
    QVERIFY2(got.Text.find("5 of 6") != std::string::npos, got.Text.c_str());
    QVERIFY(!got.Transferred);
    QCOMPARE(talk.LocalFile("kept"), QByteArray("old"));
    QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::AFileThatHasShrunkMeanwhileIsWhole()
{
    StrictConversation talk(Get("213 6") + "C: SIZE kept\nS: 213 5");
    const Ftp::Outcome got = talk.Do("GET kept");
    QVERIFY_GOOD(got);
    QVERIFY(got.Transferred && got.Transferred->BySize);
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::AFileBeyondItsSizeIsKeptUnconfirmed()
{
    for (const char* again : {"S: 213 2\n", "-- close\n", "-- silence\n"}) {
        StrictConversation talk(Get("213 2") + "C: SIZE kept\n" + again);
        const Ftp::Outcome got = talk.Do("GET kept");
        QVERIFY_GOOD(got);
        QVERIFY(got.Transferred && !got.Transferred->BySize);
        QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    }
}

void SizesTest::TheSizeCountsForMoreThanTheAnnouncement()
{
    std::string script = Get("213 5");
    script.replace(script.find("150 coming"), 10, "150 coming (999 bytes)");
    StrictConversation talk(script);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::AnUnknownSizeIsNoError_data()
{
    QTest::addColumn<QString>("reply");
    for (const char* reply : {"550 no", "500 what?", "502 no", "504 no", "213 -5", "213 99999999999999999999", "213",
                              "213 x", "450 later", "213-a\\r\\n213 b", "350 more?"})
        QTest::newRow(reply) << reply;
}

void SizesTest::AnUnknownSizeIsNoError()
{
    QFETCH(QString, reply);
    StrictConversation talk(Get(reply.toStdString()));
    const Ftp::Outcome got = talk.Do("GET kept");
    QVERIFY_GOOD(got);
    QVERIFY(got.Transferred && !got.Transferred->BySize);
    QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::AnUnknownCommandIsNotSentAgain()
{
    const std::string again = "C: EPSV\nS: 229 (|||4002|)\n-- listen 4002\nC: RETR kept\n-- accept\nS: 150\nD: bytes\n"
                              "-- end\nS: 226\n";
    for (const char* reply : {"500 what?", "502 no", "504 no"}) {
        StrictConversation talk(Get(reply) + again);
        QVERIFY_GOOD(talk.Do("GET kept"));
        QVERIFY_GOOD(talk.Do("GET kept"));
        QVERIFY_FOLLOWED(talk);
    }
}

void SizesTest::AServerThatLeavesInsteadOfASizeIsOneCleanFailure()
{
    // The first time the lines sent ahead may be to blame.
    const std::string script = LogIn + "C: TYPE I\nS: 200 fine\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\n"
                                       "C: SIZE kept\nS: 421 bye\n-- gone\n";
    StrictConversation talk(script + script);
    talk.MakeLocalFile("kept", "old");
    QCOMPARE_FAILED(talk.Do("GET kept"), 421);
    QCOMPARE(talk.LocalFile("kept"), QByteArray("old"));
    QVERIFY(!talk.Session->IsConnected());
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::ASentFileIsCompared()
{
    StrictConversation talk(PutAfterGet("C: SIZE sent\nS: 213 70000"));
    talk.MakeLocalFile("sent", QByteArray::fromStdString(LargeText));
    QVERIFY_GOOD(talk.Do("GET kept"));
    const Ftp::Outcome got = talk.Do("PUT sent");
    QVERIFY_GOOD(got);
    QVERIFY(got.Transferred && got.Transferred->BySize);
    QCOMPARE(got.Transferred->Bytes, std::uint64_t{70'000});
    QVERIFY_FOLLOWED(talk);
}

void SizesTest::ASentFileThatIsShortIsNoSuccess()
{
    StrictConversation talk(PutAfterGet("C: SIZE sent\nS: 213 69999"));
    talk.MakeLocalFile("sent", QByteArray::fromStdString(LargeText));
    QVERIFY_GOOD(talk.Do("GET kept"));
    const Ftp::Outcome got = talk.Do("PUT sent");
    QCOMPARE_FAILED(got, Ftp::ResponseError);
    QVERIFY2(got.Text.find("69999 of 70000") != std::string::npos, got.Text.c_str());
}

void SizesTest::ASentFileIsNotAskedForWhereItDoesNotPay()
{
    // Nobody knows whether this server answers SIZE.
    StrictConversation large(LogIn +
                             "C: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: STOR sent\n"
                             "-- accept\nS: 150\nU: " +
                             LargeText + "\nS: 226\nC: PWD\nS: 257 \"/\"");
    large.MakeLocalFile("sent", QByteArray::fromStdString(LargeText));
    const Ftp::Outcome got = large.Do("PUT sent");
    QVERIFY_GOOD(got);
    QVERIFY(got.Transferred && !got.Transferred->BySize);
    QVERIFY_GOOD(large.Do("PWD"));
    QVERIFY_FOLLOWED(large);

    StrictConversation small(Get("213 5") + "C: EPSV\nS: 229 (|||4002|)\n-- listen 4002\nC: STOR sent\n-- accept\n"
                                            "S: 150\nU: little\nS: 226\nC: PWD\nS: 257 \"/\"");
    small.MakeLocalFile("sent", "little");
    QVERIFY_GOOD(small.Do("GET kept"));
    QVERIFY_GOOD(small.Do("PUT sent"));
    QVERIFY_GOOD(small.Do("PWD"));
    QVERIFY_FOLLOWED(small);
}

void SizesTest::AConnectionLostBehindTheConfirmationIsNoFailure()
{
    for (const char* end : {"-- close", "-- break", "-- silence", "S: 421 bye"}) {
        StrictConversation talk(PutAfterGet(std::string("C: SIZE sent\n") + end));
        talk.MakeLocalFile("sent", QByteArray::fromStdString(LargeText));
        QVERIFY_GOOD(talk.Do("GET kept"));
        const Ftp::Outcome got = talk.Do("PUT sent");
        QVERIFY_GOOD(got);
        QVERIFY(got.Transferred && !got.Transferred->BySize);
        QVERIFY(talk.LastDuration <= Conversation::Limit);
        const std::string before = std::string(end) == "S: 421 bye" ? "-- gone\n" : "";
        talk.Server.Play(before + LogIn + "C: PWD\nS: 257 \"/\"");
        QVERIFY_GOOD(talk.Do("PWD"));
    }
}

QTEST_GUILESS_MAIN(SizesTest)
#include "sizes_test.moc"
