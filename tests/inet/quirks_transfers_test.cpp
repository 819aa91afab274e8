#include "inet/ftp/data_ends.h"
#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

#include <QDir>
#include <QtTest>
#ifndef Q_OS_WIN
#include <csignal>
#include <sys/resource.h>
#endif

/// Data connections, listings and transfers as servers in the world handle them, and disks that are full.
class QuirksTransfersTest : public QObject {
    Q_OBJECT

private slots:
    void AddressesFromTheServerLeadNowhereElse_data();
    void AddressesFromTheServerLeadNowhereElse();
    void TheControlPortIsNoPortForData();
    void APortThatNobodyServesTimesOut();
    void TheServerMayAnswerBeforeOrAfterTheConnection_data();
    void TheServerMayAnswerBeforeOrAfterTheConnection();
    void DataWithoutItsConfirmationTimesOut();
    void NothingIsAskedToBeResumed();

    void AnEmptyListingMayHaveNoData_data();
    void AnEmptyListingMayHaveNoData();
    void AHugeListingArrivesWhole();
    void AListingWithoutEndHasALimit();
    void AListingWithoutEndCanBeCancelled();
    void NamesMayBePaths();

    void ASlowReaderIsWaitedFor();
    void AConfirmedSendWhoseDataWasResetIsProvenBySize_data();
    void AConfirmedSendWhoseDataWasResetIsProvenBySize();
    void ARefusedNewNameIsAnError();
    void ALineIsNeverALocalPath();
#ifndef Q_OS_WIN
    void AFullDiskLeavesTheOldFile();
#endif
    void T12LineEndsWrittenAnewAreNoticed_data();
    void T12LineEndsWrittenAnewAreNoticed();
};

namespace {

const std::string Get = LogIn + "C: TYPE I\nS: 200 fine\n" + SamplePassive + "C: RETR kept\n";

std::string StringIn(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

#ifndef Q_OS_WIN

/// Files of this process cannot grow beyond a size, as if the disk were full, while this lives.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes)
    {
        Handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &Before);
        rlimit now = Before;
        now.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &now);
    }

    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &Before);
        std::signal(SIGXFSZ, Handler);
    }

    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    void (*Handler)(int) = nullptr;
    rlimit Before{};
};

#endif

}  // namespace

void QuirksTransfersTest::AddressesFromTheServerLeadNowhereElse_data()
{
    QTest::addColumn<QString>("passive");
    const QString refused = "C: EPSV\nS: 500 no\nC: PASV\nS: 227 ";
    QTest::newRow("private") << refused + "ok (192,168,1,2,15,161)";
    QTest::newRow("everywhere") << refused + "ok (224,0,0,1,15,161)";
    QTest::newRow("this host") << refused + "ok (0,0,0,0,15,161)";
    QTest::newRow("equals sign") << refused + "=10,0,0,1,15,161";
    QTest::newRow("blanks and zeros") << refused + "ok ( 010, 000 ,00 , 1,015 ,161 )";
    QTest::newRow("numbers before") << refused + "3 ports, 17 left: (10,0,0,1,15,161)";
    QTest::newRow("bare") << refused + "10,0,0,1,15,161";
    QTest::newRow("several lines") << refused.chopped(4) + "227-(1,2,3,4,5,6)\nS: 227 ok (10,0,0,1,15,161)";
    QTest::newRow("extended, address inside") << "C: EPSV\nS: 229 ok (|2|fe80::1|4001|)";
    QTest::newRow("extended, other marks") << "C: EPSV\nS: 229 ok ($$$4001$)";
}

void QuirksTransfersTest::AddressesFromTheServerLeadNowhereElse()
{
    Conversation talk(LogIn + StringIn("passive") + "\n-- listen 4001\nC: NLST\n-- accept\nS: 150\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("LS"));
    const Ftp::Endpoint here(asio::ip::make_address("127.0.0.1"), 4001);
    QCOMPARE(talk.Server.DataPeers(), std::vector<Ftp::Endpoint>{here});
    QVERIFY_FOLLOWED(talk);
}

void QuirksTransfersTest::TheControlPortIsNoPortForData()
{
    for (const char* offer : {"C: EPSV\nS: 500 no\nC: PASV\nS: 227 ok (127,0,0,1,0,21)\n",
                              "C: EPSV\nS: 229 ok (|||21|)\nC: PASV\nS: 227 ok (127,0,0,1,0,21)\n"}) {
        Conversation talk(LogIn + offer + "-- gone\n" + LogIn + "C: PWD\nS: 257 \"/\"");
        QCOMPARE_FAILED(talk.Do("DIR"), Ftp::ResponseError);
        QCOMPARE(talk.LastDuration.count(), 0);
        QVERIFY_GOOD(talk.Do("PWD"));
        QVERIFY_FOLLOWED(talk);
    }
}

void QuirksTransfersTest::APortThatNobodyServesTimesOut()
{
    Conversation talk(Get + "-- accept\n-- silence");
    talk.MakeLocalFile("kept", SampleKept);
    QCOMPARE_FAILED(talk.Do("GET kept"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void QuirksTransfersTest::TheServerMayAnswerBeforeOrAfterTheConnection_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("waits for it") << "-- accept\nS: 150\n";
    QTest::newRow("answers first") << "S: 150\n-- accept\n";
    QTest::newRow("answers long after") << "-- accept\n-- pause 15000\nS: 150\n";
}

void QuirksTransfersTest::TheServerMayAnswerBeforeOrAfterTheConnection()
{
    Conversation talk(Get + StringIn("script") + "D: data\n-- end\nS: 226 done");
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("data"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksTransfersTest::DataWithoutItsConfirmationTimesOut()
{
    Conversation talk(Get + "-- accept\nS: 150\nD: data\n-- end\n-- silence");
    talk.MakeLocalFile("kept", SampleKept);
    QCOMPARE_FAILED(talk.Do("GET kept"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QVERIFY(!talk.Session->IsConnected());
}

// A broken transfer begins anew from the first byte, whatever the server remembers.
void QuirksTransfersTest::NothingIsAskedToBeResumed()
{
    Conversation talk(Get + "-- accept\nS: 150\nD: half\n-- break data\nS: 426 broken\n" + SamplePassive +
                      "C: RETR kept\n-- accept\nS: 150\nD: half and half\n-- end\nS: 226");
    QCOMPARE_FAILED(talk.Do("GET kept"), 426);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("half and half"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksTransfersTest::AnEmptyListingMayHaveNoData_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("confirmed and ended") << "S: 226 nothing\n-- end";
    QTest::newRow("ended and confirmed") << "-- end\nS: 226 nothing";
    QTest::newRow("refused, left open") << "S: 450 nothing here";
    QTest::newRow("refused, reset") << "-- break data\nS: 550 No files found";
    QTest::newRow("refused, other words") << "S: 550 The directory is empty.";
}

void QuirksTransfersTest::AnEmptyListingMayHaveNoData()
{
    Conversation talk(LogIn + SamplePassive + "C: LIST\n-- accept\n" + StringIn("end") + "\nC: PWD\nS: 257 \"/\"");
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY_GOOD(got);
    QVERIFY(got.Reply.empty());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksTransfersTest::AHugeListingArrivesWhole()
{
    std::string listing;
    for (int i = 0; i < 150'000; ++i) listing += "-rw-r--r-- 1 a b 5 Jan  5 10:22 file " + std::to_string(i) + "\r\n";
    listing += std::string(100'000, 'n') + "\r\n";
    std::string script = LogIn + SamplePassive + "C: LIST\n-- accept\nS: 150\n";
    for (std::size_t at = 0; at < listing.size();) {
        const std::size_t end = listing.find('\n', std::min(at + 100'000, listing.size() - 1)) + 1;
        std::string piece = listing.substr(at, end - at);
        for (std::size_t crlf = piece.find("\r\n"); crlf != std::string::npos; crlf = piece.find("\r\n", crlf + 4))
            piece.replace(crlf, 2, "\\r\\n");
        script += "D: " + piece + '\n';
        at = end;
    }
    Conversation talk(script + "-- end\nS: 226 done");
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY_GOOD(got);
    QVERIFY(got.Reply == listing);
}

void QuirksTransfersTest::AListingWithoutEndHasALimit()
{
    Ftp::MemorySink sink(100);
    sink.Open();
    sink.Write(std::string(60, 'x').data(), 60);
    sink.Write(std::string(40, 'x').data(), 40);
    QVERIFY_EXCEPTION_THROWN(sink.Write("x", 1), Ftp::Failure);
    QCOMPARE(sink.Bytes.size(), 100U);
}

void QuirksTransfersTest::AListingWithoutEndCanBeCancelled()
{
    std::string drips;
    for (int i = 0; i < 1000; ++i) drips += "D: x\\r\\n\n-- pause 1000\n";
    Conversation talk(LogIn + SamplePassive + "C: LIST\n-- accept\nS: 150\n" + drips);
    const auto alarm = talk.Clock.After(std::chrono::seconds(100), [&] { talk.Session->Cancel(); });
    const Ftp::Outcome got = talk.Do("DIR");
    QCOMPARE_FAILED(got, Ftp::CancelledError);
    QCOMPARE(talk.LastDuration.count(), 100'000);
    QVERIFY(got.Reply.empty());
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void QuirksTransfersTest::NamesMayBePaths()
{
    Conversation talk(LogIn + SamplePassive +
                      "C: NLST\n-- accept\nS: 150\nD: /pub/a\\r\\n./b\\r\\n../c\\r\\n\n-- end\nS: 226");
    QCOMPARE(talk.Do("LS").Reply, std::string("/pub/a\r\n./b\r\n../c\r\n"));
}

void QuirksTransfersTest::ASlowReaderIsWaitedFor()
{
    std::string sips;
    for (int i = 0; i < 10; ++i) sips += "-- pause 15000\n-- take 32768\n";
    Conversation talk(LogIn + "C: TYPE I\nS: 200 fine\n" + SamplePassive +
                      "C: STOR sent\n-- accept\n-- hold data\nS: 150\n" + sips + "U: rest\nS: 226 stored");
    talk.MakeLocalFile("sent", QByteArray(10 * 32768, 'x') + "rest");
    QVERIFY_GOOD(talk.Do("PUT sent"));
    QCOMPARE(talk.LastDuration.count(), 150'000);
    QVERIFY_FOLLOWED(talk);
}

void QuirksTransfersTest::AConfirmedSendWhoseDataWasResetIsProvenBySize_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<bool>("good");
    QTest::newRow("whole") << "213 4" << true;
    QTest::newRow("short") << "213 3" << false;
    QTest::newRow("unknown") << "550 no" << false;
}

// Some servers confirm what they could not read to its end.
void QuirksTransfersTest::AConfirmedSendWhoseDataWasResetIsProvenBySize()
{
    QFETCH(bool, good);
    Conversation talk(LogIn + "C: TYPE I\nS: 200 fine\n" + SamplePassive +
                      "C: STOR sent\n-- accept\nS: 150\nU: data\n-- break data\n-- pause 1\nS: 226 stored\n"
                      "C: SIZE sent\nS: " +
                      StringIn("size"));
    talk.MakeLocalFile("sent", "data");
    QCOMPARE(talk.Do("PUT sent").Good, good);
    QVERIFY_FOLLOWED(talk);
}

void QuirksTransfersTest::ARefusedNewNameIsAnError()
{
    Conversation talk(LogIn + "C: RNFR a\nS: 250 fine\nC: RNTO b\nS: 553 not that\nC: RNFR a\nS: 550 gone\n"
                              "C: PWD\nS: 257 \"/\"");
    QCOMPARE_FAILED(talk.Do("RENAME a b"), 553);
    QCOMPARE_FAILED(talk.Do("RENAME a b"), 550);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

// A server may list what it likes and then take that line for a name: as a local name it must stay in the folder.
void QuirksTransfersTest::ALineIsNeverALocalPath()
{
    const std::string line = "lrwxrwxrwx 1 a b 5 Jan  5 10:22 x -> y/../../../evil";
    Conversation talk(LogIn + SamplePassive + "C: LIST\n-- accept\nS: 150\nD: " + line +
                      "\\r\\n\n-- end\nS: 226\nC: TYPE I\nS: 200\n" + SamplePassive + "C: RETR " + line +
                      "\n-- accept\nS: 150\nD: evil\n-- end\nS: 226");
    QVERIFY(QDir(talk.LocalFolder()).mkpath("near/here"));
    // Windows goes by the text and looks for no such folder, and could not have it either.
#ifndef Q_OS_WIN
    QVERIFY(QDir(talk.LocalFolder()).mkpath("near/here/" + QString::fromStdString(line).section('/', 0, 0)));
#endif
    talk.LocalPlace = "near/here";
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE_FAILED(talk.Do("GET \"" + line + "\" \"" + line + '"'), Ftp::OperationError);
    QVERIFY(!QFile::exists(talk.LocalFolder() + "/evil"));
    QVERIFY(!QFile::exists(talk.LocalFolder() + "/near/evil"));
}

#ifndef Q_OS_WIN

void QuirksTransfersTest::AFullDiskLeavesTheOldFile()
{
    const std::string big(200'000, 'x');
    Conversation talk(Get + "-- accept\nS: 150\nD: " + big + "\n-- pause 10\nD: more\n-- end\nS: 226 done");
    talk.MakeLocalFile("kept", SampleKept);
    Ftp::Outcome got;
    {
        const SmallDisk disk(64 * 1024);
        got = talk.Do("GET kept");
    }
    QVERIFY(!got.Good);
    QCOMPARE(got.Code, int(Ftp::InternalError));
    QVERIFY2(got.Text.find("kept") != std::string::npos, got.Text.c_str());
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    QVERIFY(!talk.Session->IsConnected());
    QCOMPARE(talk.Server.OpenLinks(), 0U);

    talk.Server.Play(Get + "-- accept\nS: 150\nD: new\n-- end\nS: 226 done");
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("new"));
}

#endif

void QuirksTransfersTest::T12LineEndsWrittenAnewAreNoticed_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("arrives");
    QTest::newRow("shorter") << R"(one\ntwo\n)" << QString();
    QTest::newRow("longer") << R"(one\r\r\ntwo\r\r\n)" << QString("one\r\r\ntwo\r\r\n");
}

// In binary type a server has to send the file as it is.
void QuirksTransfersTest::T12LineEndsWrittenAnewAreNoticed()
{
    QFETCH(QString, arrives);
    const std::string sized = "C: SIZE kept\nS: 213 10\n";
    Conversation talk(LogIn + "C: TYPE I\nS: 200 fine\n" + SamplePassive + sized +
                      "C: RETR kept\n-- accept\nS: 150\nD: " + StringIn("data") + "\n-- end\nS: 226\n" + sized +
                      "C: PWD\nS: 257 \"/\"");
    talk.MakeLocalFile("kept", SampleKept);
    const Ftp::Outcome got = talk.Do("GET kept");
    if (arrives.isEmpty()) {
        QCOMPARE_FAILED(got, Ftp::ResponseError);
        QCOMPARE(talk.LocalFile("kept"), SampleKept);
    } else {
        QVERIFY_GOOD(got);
        QVERIFY(!got.Transferred->BySize);
        QCOMPARE(talk.LocalFile("kept"), arrives.toLatin1());
        QCOMPARE(talk.Remarks.size(), 1U);
        QVERIFY(QString::fromStdString(talk.Remarks.front()).contains("12 bytes here and 10 at the server"));
    }
    talk.Server.Play((talk.Session->IsConnected() ? "" : LogIn) + "C: PWD\nS: 257 \"/\"");
    QVERIFY_GOOD(talk.Do("PWD"));
}

QTEST_GUILESS_MAIN(QuirksTransfersTest)
#include "quirks_transfers_test.moc"
