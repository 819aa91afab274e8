#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// How data connections are opened, and in which orders data and replies may come.
class DataConnectionsTest : public QObject {
    Q_OBJECT

private slots:
    void TheServerChoosesOnlyAPort_data();
    void TheServerChoosesOnlyAPort();
    void ARefusedExtendedPassiveIsRemembered();
    void AnExtendedPortThatCannotBeReachedIsRemembered();
    void AnExtendedPortThatIsSilentIsRemembered();
    void BothRefusedIsAnErrorThatKeepsTheSession();
    void OverIpv6OnlyExtendedPassiveIsAsked();
    void ImpossiblePortsAreAnError_data();
    void ImpossiblePortsAreAnError();

    void ReceivesInEveryOrder_data();
    void ReceivesInEveryOrder();
    void SendsInEveryOrder_data();
    void SendsInEveryOrder();
    void ARefusalEndsAReceiveAtOnce_data();
    void ARefusalEndsAReceiveAtOnce();
    void ARefusalEndsASendAtOnce_data();
    void ARefusalEndsASendAtOnce();
    void AReasonBehindLostDataIsReported();
    void LostDataIsNoSuccess();
    void AConnectionThatEndsDuringATransferIsNoSuccess();
    void AFileBelowItsAnnouncedSizeIsNoSuccess();
    void AWrongAnnouncementIsAskedAgain();
    void DataThatDripsIsWaitedFor();
    void DataThatStallsTimesOut();
    void AServerThatDoesNotReadTimesOut();
    void ASendWithoutItsReplyIsNoSuccess();
    void EmptyFoldersMayBeRefused_data();
    void EmptyFoldersMayBeRefused();
    void ListingsComeByteForByte();
};

namespace {

const std::string Passive = "C: EPSV\nS: 229 here (|||4001|)\n-- listen 4001\n";
const std::string Get = LogIn + "C: TYPE I\nS: 200 fine\n" + Passive + "C: RETR kept\n-- accept\n";
const std::string Put = LogIn + "C: TYPE I\nS: 200 fine\n" + Passive + "C: STOR sent\n-- accept\n";
const std::string StillThere = "C: PWD\nS: 257 \"/\"\n";

void AddScript(const char* name, const char* script)
{
    QTest::newRow(name) << QString(script);
}

std::string Fetched(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

}  // namespace

void DataConnectionsTest::TheServerChoosesOnlyAPort_data()
{
    QTest::addColumn<QString>("script");
    AddScript("another host", "C: EPSV\nS: 500\nC: PASV\nS: 227 ok (10,1,2,3,15,161)\n");
    AddScript("no host", "C: EPSV\nS: 500\nC: PASV\nS: 227 ok (0,0,0,0,15,161)\n");
    AddScript("everybody", "C: EPSV\nS: 500\nC: PASV\nS: 227 ok (255,255,255,255,15,161)\n");
    AddScript("without parentheses", "C: EPSV\nS: 500\nC: PASV\nS: 227 127,0,0,1,15,161\n");
    AddScript("extended", "C: EPSV\nS: 229 ok (|1|10.1.2.3|4001|)\n");
    AddScript("extended, other marks", "C: EPSV\nS: 229 ok (!!!4001!)\n");
}

void DataConnectionsTest::TheServerChoosesOnlyAPort()
{
    Conversation talk(LogIn + Fetched("script") + "-- listen 4001\nC: NLST\n-- accept\nS: 150\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("LS"));
    const auto here = asio::ip::make_address("127.0.0.1");
    QCOMPARE(talk.Server.DataPeers(), std::vector<Ftp::Endpoint>{Ftp::Endpoint(here, 4001)});
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::ARefusedExtendedPassiveIsRemembered()
{
    const std::string list = "C: PASV\nS: 227 ok (127,0,0,1,15,161)\n-- listen 4001\nC: NLST\n-- accept\nS: 150\n"
                             "-- end\nS: 226\n";
    Conversation talk(LogIn + "C: EPSV\nS: 522 no\n" + list + list + "C: QUIT\nS: 221\n-- gone\n" + LogIn + list);
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_GOOD(talk.Do("CLOSE"));
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::AnExtendedPortThatCannotBeReachedIsRemembered()
{
    const std::string list = "C: PASV\nS: 227 ok (127,0,0,1,15,161)\n-- listen 4001\nC: NLST\n-- accept\nS: 150\n"
                             "-- end\nS: 226\n";
    Conversation talk(LogIn + "C: EPSV\nS: 229 try (|||4999|)\n" + list + list);
    QVERIFY_GOOD(talk.Do("LS"));
    QCOMPARE(talk.LastDuration.count(), 0);
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::AnExtendedPortThatIsSilentIsRemembered()
{
    Conversation talk(LogIn + "C: EPSV\nS: 229 try (|||4999|)\n-- silent 4999\nC: PASV\n"
                              "S: 227 ok (127,0,0,1,15,161)\n-- listen 4001\nC: NLST\n-- accept\nS: 150\n-- end\n"
                              "S: 226\n");
    // The script is one step ahead: the port must be silent before the client has read of it.
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY(talk.LastDuration < Conversation::Limit);
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::BothRefusedIsAnErrorThatKeepsTheSession()
{
    Conversation talk(LogIn + "C: EPSV\nS: 502 no\nC: PASV\nS: 502 never\n" + StillThere);
    QCOMPARE_FAILED(talk.Do("DIR"), 502);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::OverIpv6OnlyExtendedPassiveIsAsked()
{
    const auto here = asio::ip::make_address("::1");
    Conversation good(LogIn + Passive + "C: NLST\n-- accept\nS: 150\n-- end\nS: 226\n");
    good.Server.SetHost({here});
    QVERIFY_GOOD(good.Do("LS"));
    QCOMPARE(good.Server.DataPeers(), std::vector<Ftp::Endpoint>{Ftp::Endpoint(here, 4001)});

    Conversation bad(LogIn + "C: EPSV\nS: 522 no\n" + StillThere);
    bad.Server.SetHost({here});
    QCOMPARE_FAILED(bad.Do("LS"), 522);
    QVERIFY_GOOD(bad.Do("PWD"));
    QVERIFY_FOLLOWED(bad);
}

void DataConnectionsTest::ImpossiblePortsAreAnError_data()
{
    QTest::addColumn<QString>("reply");
    AddScript("five numbers", "227 ok (127,0,0,1,15)");
    AddScript("too large", "227 ok (127,0,0,1,999,1)");
    AddScript("no number", "227 ok");
    AddScript("port 0", "227 ok (127,0,0,1,0,0)");
    AddScript("nobody listens", "227 ok (127,0,0,1,15,162)");
}

void DataConnectionsTest::ImpossiblePortsAreAnError()
{
    Conversation talk(LogIn + "C: EPSV\nS: 500 no\nC: PASV\nS: " + Fetched("reply"));
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY(!got.Good);
    QVERIFY(got.Code == Ftp::ResponseError || got.Code == Ftp::ConnectError);
    QCOMPARE(talk.LastDuration.count(), 0);
    talk.Server.Play(LogIn + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
}

void DataConnectionsTest::ReceivesInEveryOrder_data()
{
    QTest::addColumn<QString>("script");
    AddScript("as in the book", "S: 150\nD: data\n-- end\nS: 226");
    AddScript("another 1xx", "S: 125\nD: data\n-- end\nS: 226");
    AddScript("two 1xx", "S: 150\nS: 150\nD: data\n-- end\nS: 226");
    AddScript("no 1xx", "D: data\n-- end\nS: 226");
    AddScript("no 1xx, data late", "-- pause 5000\nD: data\n-- pause 5000\n-- end\nS: 226");
    AddScript("data first", "D: data\n-- end\n-- pause 10\nS: 150\nS: 226");
    AddScript("confirmed first", "S: 150\nS: 226\n-- pause 10\nD: da\n-- pause 10\nD: ta\n-- end");
    AddScript("confirmed alone", "S: 226\n-- pause 10\nD: data\n-- end");
    AddScript("confirmed late", "S: 150\nD: data\n-- end\n-- pause 19000\nS: 226");
    AddScript("200", "S: 150\nD: data\n-- end\nS: 200");
    AddScript("250", "S: 150\nD: data\n-- end\nS: 250");
    AddScript("all at once", "D: data\n-- end\nS+ 150 a\\r\\n226 b\\r\\n");
}

void DataConnectionsTest::ReceivesInEveryOrder()
{
    Conversation talk(Get + Fetched("script") + "\n-- pause 1\n" + StillThere);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("data"));
    QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    QVERIFY(talk.Clock.JumpToNextAlarm());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::SendsInEveryOrder_data()
{
    QTest::addColumn<QString>("script");
    AddScript("as in the book", "S: 150\nU: data\nS: 226");
    AddScript("another 1xx", "S: 125\nU: data\nS: 250");
    AddScript("two 1xx", "S: 150\nS: 150\nU: data\nS: 226");
    AddScript("late 1xx", "-- pause 15000\nS: 150\nU: data\n-- pause 15000\nS: 226");
    AddScript("confirmed first", "S: 150\nS: 226\nU: data");
}

void DataConnectionsTest::SendsInEveryOrder()
{
    Conversation talk(Put + Fetched("script") + "\n" + StillThere);
    talk.MakeLocalFile("sent", "data");
    QVERIFY_GOOD(talk.Do("PUT sent"));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::ARefusalEndsAReceiveAtOnce_data()
{
    QTest::addColumn<QString>("script");
    AddScript("instead of data", "S: 550 no");
    AddScript("in place of the 1xx", "S: 425 no");
    AddScript("behind the 1xx", "S: 150\nS: 425 no");
    AddScript("in the middle", "S: 150\nD: part\n-- pause 10\nS: 426 no");
    AddScript("in the middle, data closed", "S: 150\nD: part\n-- pause 10\n-- end\n-- pause 10\nS: 451 no");
    AddScript("in the middle, data reset", "S: 150\nD: part\n-- pause 10\n-- break data\n-- pause 10\nS: 552 no");
}

void DataConnectionsTest::ARefusalEndsAReceiveAtOnce()
{
    Conversation talk(Get + Fetched("script") + "\n-- data gone\n" + StillThere);
    talk.MakeLocalFile("kept", "old");
    const Ftp::Outcome got = talk.Do("GET kept");
    QVERIFY(!got.Good);
    QVERIFY2(got.Code >= 400 && got.Code < 600, qPrintable(QString::number(got.Code)));
    QCOMPARE(got.Text, std::string("no"));
    QVERIFY(talk.LastDuration < Ftp::Milliseconds(100));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("old"));
    QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::ARefusalEndsASendAtOnce_data()
{
    QTest::addColumn<QString>("script");
    AddScript("instead of the 1xx", "S: 553 no");
    AddScript("in the middle", "-- hold data\nS: 150\n-- pause 10\nS: 552 no");
    AddScript("in the middle, data closed", "-- hold data\nS: 150\n-- pause 10\n-- break data\n-- pause 10\nS: 426 no");
    AddScript("at the end", "S: 150\nU: a long text that does not fit\nS: 450 no");
}

void DataConnectionsTest::ARefusalEndsASendAtOnce()
{
    Conversation talk(Put + Fetched("script") + "\n-- data gone\n" + StillThere);
    talk.MakeLocalFile("sent", "a long text that does not fit");
    const Ftp::Outcome got = talk.Do("PUT sent");
    QVERIFY(!got.Good);
    QCOMPARE(got.Text, std::string("no"));
    QVERIFY(talk.LastDuration < Ftp::Milliseconds(100));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::AReasonBehindLostDataIsReported()
{
    Conversation talk(Get + "S: 150\nD: part\n-- break data\n-- pause 1000\nS: 451 the disk broke");
    QCOMPARE_FAILED(talk.Do("GET kept"), 451);
    QVERIFY(talk.LocalFiles().isEmpty());
}

void DataConnectionsTest::LostDataIsNoSuccess()
{
    Conversation talk(Get + "S: 150\nD: part\n-- break data\nS: 226 fine");
    QCOMPARE_FAILED(talk.Do("GET kept"), Ftp::ResetError);
    QVERIFY(talk.LocalFiles().isEmpty());
}

void DataConnectionsTest::AConnectionThatEndsDuringATransferIsNoSuccess()
{
    for (const char* end : {"-- close", "-- break", "S: 421 bye", "S: 421 bye\n-- close"}) {
        Conversation talk(Get + "S: 150\nD: part\n" + end + "\n-- pause 1000\nD: more\n-- end");
        const Ftp::Outcome got = talk.Do("GET kept");
        QVERIFY(!got.Good);
        QVERIFY(talk.LastDuration < Conversation::Limit);
        QVERIFY(talk.LocalFiles().isEmpty());
        QVERIFY(!talk.Session->IsConnected());
    }
}

void DataConnectionsTest::AFileBelowItsAnnouncedSizeIsNoSuccess()
{
    for (const char* size : {"S: 213 9", "S: 550 unknown"}) {
        Conversation talk(Get + "S: 150 coming (9 bytes)\nD: short\n-- end\nS: 226 fine\nC: SIZE kept\n" + size);
        talk.MakeLocalFile("kept", "old");
        const Ftp::Outcome got = talk.Do("GET kept");
        QCOMPARE_FAILED(got, Ftp::ResponseError);
        QVERIFY2(got.Text.find("5 of 9") != std::string::npos, got.Text.c_str());
        QCOMPARE(talk.LocalFile("kept"), QByteArray("old"));
        QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    }
}

void DataConnectionsTest::AWrongAnnouncementIsAskedAgain()
{
    Conversation talk(Get + "S: 150 coming (99999 bytes)\nD: whole\n-- end\nS: 226 fine\nC: SIZE kept\nS: 213 5");
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("whole"));
    QVERIFY_FOLLOWED(talk);

    Conversation more(Get + "S: 150 coming (2 bytes)\nD: whole\n-- end\nS: 226 fine");
    QVERIFY_GOOD(more.Do("GET kept"));
    QCOMPARE(more.LocalFile("kept"), QByteArray("whole"));
}

void DataConnectionsTest::DataThatDripsIsWaitedFor()
{
    std::string drips;
    for (int i = 0; i < 30; ++i) drips += "D: x\n-- pause 10000\n";
    Conversation talk(Get + "S: 150\n" + drips + "-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray(30, 'x'));
    QCOMPARE(talk.LastDuration.count(), 300'000);
}

void DataConnectionsTest::DataThatStallsTimesOut()
{
    Conversation talk(Get + "S: 150\nD: part\n-- silence");
    QCOMPARE_FAILED(talk.Do("GET kept"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
    QVERIFY(talk.LocalFiles().isEmpty());
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void DataConnectionsTest::AServerThatDoesNotReadTimesOut()
{
    Conversation talk(Put + "-- hold data\nS: 150\n-- silence");
    talk.MakeLocalFile("sent", QByteArray(100'000, 'x'));
    QCOMPARE_FAILED(talk.Do("PUT sent"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void DataConnectionsTest::ASendWithoutItsReplyIsNoSuccess()
{
    Conversation silent(Put + "S: 150\nU: data\n-- silence");
    silent.MakeLocalFile("sent", "data");
    QCOMPARE_FAILED(silent.Do("PUT sent"), Ftp::TimeOutError);
    Conversation closed(Put + "S: 150\nU: data\n-- close");
    closed.MakeLocalFile("sent", "data");
    QCOMPARE_FAILED(closed.Do("PUT sent"), Ftp::AbortedError);
}

void DataConnectionsTest::EmptyFoldersMayBeRefused_data()
{
    QTest::addColumn<QString>("script");
    AddScript("450", "S: 450 No files found");
    AddScript("550", "S: 550 No files found.");
    AddScript("nothing at all", "S: 150\n-- end\nS: 226");
}

void DataConnectionsTest::EmptyFoldersMayBeRefused()
{
    Conversation talk(LogIn + Passive + "C: NLST\n-- accept\n" + Fetched("script") + "\n" + StillThere);
    const Ftp::Outcome got = talk.Do("LS");
    QVERIFY_GOOD(got);
    QVERIFY(got.Reply.empty());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void DataConnectionsTest::ListingsComeByteForByte()
{
    Conversation talk(
        LogIn + Passive +
        "C: LIST\n-- accept\nS: 150\nD: \\xef\\xbb\\xbfa\\0b\\r\\r\\nc\\n\\x1b[1m\\xff\\r\\nno end\n-- end\n"
        "S: 226\nC: FEAT\nS: 211 none");
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("\xef\xbb\xbf"
                                    "a\0b\r\r\nc\n\x1b[1m\xff\r\nno end",
                                    24));
}

QTEST_GUILESS_MAIN(DataConnectionsTest)
#include "data_connections_test.moc"
