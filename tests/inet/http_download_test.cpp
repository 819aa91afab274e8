#include "support/downloads.h"
#include "support/http_server.h"
#include "support/memory_in_use.h"

#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

/// Files fetched by HTTP through the component's face: what arrives, and every way in which a server can fail to send.
class HttpDownloadTest final : public QObject {
    Q_OBJECT

private slots:
    void TheStatesAreThoseOfAnyDownload();
    void TheBytesArriveAsTheyAre();
    void ThePiecesAreTheBytesOneForOne();
    void IntoAReplyFileTheBytesAreNotInMemory();
    void AReplyFileThatCannotBeMadeIsAnError();
    void AFailedDownloadLeavesNoReplyFile();
    void AnEmptyFileArrives();
    void TheStatusIsTheError_data();
    void TheStatusIsTheError();
    void APackedFileIsNotUnpacked();
    void TheAddressGoesOutEncoded_data();
    void TheAddressGoesOutEncoded();
    void AnAddressThatMakesNoSenseIsAnError_data();
    void AnAddressThatMakesNoSenseIsAnError();

    void AFileInChunksArrives();
    void AFileByteByByteArrives();
    void AFileWithoutALengthEndsWithTheConnection();
    void AFileCutShortIsAnError_data();
    void AFileCutShortIsAnError();
    void WhatIsNoHttpIsAnError_data();
    void WhatIsNoHttpIsAnError();
    void AnEndlessHeaderIsAnError();
    void SilenceTimesOut_data();
    void SilenceTimesOut();
    void AServerThatIsNotThereIsAnError();
    void AHostThatIsNotThereIsAnError();
    void MemoryDoesNotGrowWithTheFile();
    void ProgressIsTold_data();
    void ProgressIsTold();
    void ASizeThatWasAnnouncedIsConfirmed();

    void CancelEndsItInEveryState_data();
    void CancelEndsItInEveryState();
    void TheEndComesSoonInEveryState_data();
    void TheEndComesSoonInEveryState();
    void NothingOfACancelledDownloadComesLater();

private:
    static QByteArray Sample()
    {
        QByteArray bytes(300'000, '\0');
        for (qsizetype i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>((i * 7919) >> 5);
        return bytes;
    }
};

void HttpDownloadTest::TheStatesAreThoseOfAnyDownload()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", "text")};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(downloads.States(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 12}));
    QCOMPARE(got.Code, 200);
    QCOMPARE(got.Info, QString("OK"));
    QCOMPARE(server.Requests.first().Line, QByteArray("GET /x HTTP/1.1"));
    QTRY_COMPARE(server.OpenConnections(), 0);
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
    QCOMPARE(downloads.States(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 12}));
}

void HttpDownloadTest::TheBytesArriveAsTheyAre()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", Sample())};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QVERIFY(got.Bytes == Sample());
    QCOMPARE(got.Size, Sample().size());
}

void HttpDownloadTest::ThePiecesAreTheBytesOneForOne()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", Sample())};
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
    QVERIFY(downloads.AllChunks() == Sample());
    QVERIFY(downloads.AllChunks().isEmpty());
}

void HttpDownloadTest::IntoAReplyFileTheBytesAreNotInMemory()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", Sample())};
    downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QVERIFY(got.Bytes.isEmpty());
    QCOMPARE(got.Size, Sample().size());
    QVERIFY(downloads.File(".part") == Sample());
    QVERIFY(downloads.AllChunks() == Sample());
    // It counted for that one alone, and goes with it.
    QVERIFY(downloads.Fetch(server.Url("/x")).Bytes == Sample());
    QCOMPARE(downloads.Files(), QStringList());
}

void HttpDownloadTest::AReplyFileThatCannotBeMadeIsAnError()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", Sample())};
    downloads.Component->SetReplyFile(downloads.Folder.filePath("nowhere/.part"));
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QVERIFY2(got.Info.contains(".part"), qPrintable(got.Info));
    QCOMPARE(downloads.States().last(), int(Inet::Error));
}

void HttpDownloadTest::AFailedDownloadLeavesNoReplyFile()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc", HttpServer::Answer::Close};
    for (const char* path : {"/x", "/nowhere"}) {
        downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
        QVERIFY(!downloads.Fetch(server.Url(path)).Arrived);
        QCOMPARE(downloads.Files(), QStringList());
        QVERIFY(downloads.AllChunks().isEmpty());
    }
}

void HttpDownloadTest::AnEmptyFileArrives()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", "")};
    server.Answers["/y"] = {"HTTP/1.1 204 No Content\r\n\r\n"};
    for (const char* path : {"/x", "/y"}) {
        downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
        const Inet::Download got = downloads.Fetch(server.Url(path));
        QVERIFY2(got.Arrived, qPrintable(got.Info));
        QCOMPARE(got.Size, 0);
        QCOMPARE(downloads.Files(), QStringList{".part"});
    }
}

void HttpDownloadTest::TheStatusIsTheError_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("info");
    QTest::newRow("not found") << HttpServer::Whole("404 Not Found", "<html>") << 404 << "Not Found";
    QTest::newRow("forbidden") << HttpServer::Whole("403 Keep out", "") << 403 << "Keep out";
    QTest::newRow("server error") << HttpServer::Whole("500 Ouch", "") << 500 << "Ouch";
    QTest::newRow("later") << HttpServer::Whole("503 Not now", "") << 503 << "Not now";
    QTest::newRow("no words") << HttpServer::Whole("410 ", "") << 410 << "The server answered 410 and sent no file.";
    QTest::newRow("user wanted") << HttpServer::Whole("401 Who?", "", "WWW-Authenticate: Basic realm=\"x\"\r\n") << 401
                                 << "Who?";
    QTest::newRow("user wanted, not said how") << HttpServer::Whole("401 Who?", "") << 401 << "Who?";
    QTest::newRow("a proxy's status") << HttpServer::Whole("407 Who?", "") << 407 << "Who?";
    QTest::newRow("elsewhere, not said where") << HttpServer::Whole("302 Found", "") << 302 << "Found";
    QTest::newRow("several choices") << HttpServer::Whole("300 Choose", "") << 300 << "Choose";
    QTest::newRow("not asked for") << QByteArray("HTTP/1.1 304 Same\r\n\r\n") << 304 << "Same";
    QTest::newRow("an endless error") << QByteArray("HTTP/1.1 404 Gone\r\nContent-Length: 99999999\r\n\r\n") << 404
                                      << "Gone";
}

void HttpDownloadTest::TheStatusIsTheError()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, code);
    QFETCH(QString, info);
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {answer};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Code, code);
    QCOMPARE(got.Info, info);
    QVERIFY(got.Bytes.isEmpty());
    QCOMPARE(downloads.States().last(), int(Inet::Error));
    QCOMPARE(downloads.Component->ResponseCode(), code);
    server.Answers["/x"] = {HttpServer::Whole("200 OK", "text")};
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
}

void HttpDownloadTest::APackedFileIsNotUnpacked()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x.gz"] = {HttpServer::Whole("200 OK", "\x1f\x8b not really", "Content-Encoding: gzip\r\n")};
    const Inet::Download got = downloads.Fetch(server.Url("/x.gz"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(got.Bytes, QByteArray("\x1f\x8b not really"));
    QCOMPARE(server.Requests.first().Headers.value("accept-encoding"), QByteArray("identity"));
}

void HttpDownloadTest::TheAddressGoesOutEncoded_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("nothing") << "" << QByteArray("/");
    QTest::newRow("blanks") << "/a b/c d" << QByteArray("/a%20b/c%20d");
    QTest::newRow("encoded already") << "/a%20b%2Fc" << QByteArray("/a%20b%2Fc");
    QTest::newRow("letters of other tongues") << QString::fromUtf8("/\xc3\xa4") << QByteArray("/%C3%A4");
    QTest::newRow("bytes that are no text") << QString("/") + QChar(0xDCFF) << QByteArray("/%FF");
    QTest::newRow("a question") << "/x?a=1&b=2%263" << QByteArray("/x?a=1&b=2%263");
    QTest::newRow("a fragment") << "/x#part" << QByteArray("/x");
    QTest::newRow("a lone percent sign") << "/100%" << QByteArray("/100%25");
    QTest::newRow("an encoded line end") << "/x%0d%0aHost:%20y" << QByteArray("/x%0D%0AHost:%20y");
    QTest::newRow("blanks around it") << "/x  " << QByteArray("/x");
}

void HttpDownloadTest::TheAddressGoesOutEncoded()
{
    QFETCH(QString, typed);
    QFETCH(QByteArray, sent);
    HttpServer server;
    Downloads downloads;
    server.Respond = [](const auto&) { return HttpServer::Answer{HttpServer::Whole("200 OK", "text")}; };
    const Inet::Download got = downloads.Fetch(server.Url(typed));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(server.Requests.first().Line, "GET " + sent + " HTTP/1.1");
}

void HttpDownloadTest::AnAddressThatMakesNoSenseIsAnError_data()
{
    QTest::addColumn<QString>("address");
    for (const char* address :
         {"http://", "http:///x", "http://ann:hidden@/x", "http://ann:hidden@[::1/x", "http://127.0.0.1:99999/x",
          "http://127.0.0.1:0/x", "http://127.0.0.1/a\nb", "http://ann:hidden@a b/x"}) {
        QTest::newRow(address) << address;
    }
}

void HttpDownloadTest::AnAddressThatMakesNoSenseIsAnError()
{
    QFETCH(QString, address);
    Downloads downloads;
    const Inet::Download got = downloads.Fetch(address);
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Code, 12005);
    QCOMPARE(downloads.States(), QList<int>{11});
    QVERIFY2(!got.Info.contains("hidden"), qPrintable(got.Info));
}

void HttpDownloadTest::AFileInChunksArrives()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                            "3\r\nabc\r\nA;more=yes\r\n0123456789\r\n0\r\nTrailer: x\r\n\r\n"};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(got.Bytes, QByteArray("abc0123456789"));
}

void HttpDownloadTest::AFileByteByByteArrives()
{
    HttpServer server;
    Downloads downloads;
    HttpServer::Answer answer{HttpServer::Whole("200 OK", "all of it"), HttpServer::Answer::Close};
    answer.InDrops = true;
    server.Answers["/x"] = answer;
    answer.Bytes = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nall of it\r\n0\r\n\r\n";
    server.Answers["/y"] = answer;
    for (const char* path : {"/x", "/y"}) {
        const Inet::Download got = downloads.Fetch(server.Url(path));
        QVERIFY2(got.Arrived, qPrintable(got.Info));
        QCOMPARE(got.Bytes, QByteArray("all of it"));
    }
}

void HttpDownloadTest::AFileWithoutALengthEndsWithTheConnection()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {"HTTP/1.0 200 OK\r\n\r\n" + Sample(), HttpServer::Answer::Close};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QVERIFY(got.Bytes == Sample());
}

void HttpDownloadTest::AFileCutShortIsAnError_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("isReset");
    const QByteArray length = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n";
    const QByteArray chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (const bool isReset : {false, true}) {
        const QByteArray how = isReset ? ", reset" : ", closed";
        QTest::newRow("nothing said" + how) << QByteArray() << isReset;
        QTest::newRow("half a status line" + how) << QByteArray("HTTP/1.1 20") << isReset;
        QTest::newRow("half a header" + how) << QByteArray("HTTP/1.1 200 OK\r\nContent-Le") << isReset;
        QTest::newRow("nothing of the file" + how) << length << isReset;
        QTest::newRow("half of it" + how) << length + "01234" << isReset;
        QTest::newRow("all but one" + how) << length + "012345678" << isReset;
        QTest::newRow("no chunk" + how) << chunked << isReset;
        QTest::newRow("half a chunk" + how) << chunked + "A\r\n01234" << isReset;
        QTest::newRow("a chunk and no end" + how) << chunked + "A\r\n0123456789\r\n" << isReset;
        QTest::newRow("half an end" + how) << chunked + "A\r\n0123456789\r\n0" << isReset;
    }
}

void HttpDownloadTest::AFileCutShortIsAnError()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, isReset);
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {answer, isReset ? HttpServer::Answer::Reset : HttpServer::Answer::Close};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QVERIFY2(got.Code >= 12000, qPrintable(got.Info));
    QVERIFY(got.Info.endsWith('.'));
    QVERIFY(server.Requests.size() <= 4);
    server.Answers["/x"] = {HttpServer::Whole("200 OK", "text")};
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
}

void HttpDownloadTest::WhatIsNoHttpIsAnError_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("FTP") << QByteArray("220 ready\r\n");
    QTest::newRow("SSH") << QByteArray("SSH-2.0-x\r\n");
    QTest::newRow("bytes") << QByteArray("\0\1\2\3\xff\n\n\n", 8);
    QTest::newRow("a page without a header") << QByteArray("<html>\r\n\r\n");
    QTest::newRow("no status") << QByteArray("HTTP/1.1 abc def\r\n\r\n");
    QTest::newRow("a strange status") << QByteArray("HTTP/1.1 999 x\r\nContent-Length: 0\r\n\r\n");
    QTest::newRow("a negative chunk") << QByteArray(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n-5\r\nabc\r\n0\r\n\r\n");
}

void HttpDownloadTest::WhatIsNoHttpIsAnError()
{
    QFETCH(QByteArray, answer);
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {answer, HttpServer::Answer::Close};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QVERIFY2(!got.Info.isEmpty(), qPrintable(QString::number(got.Code)));
}

// The time-out is far away.
void HttpDownloadTest::AnEndlessHeaderIsAnError()
{
    HttpServer server;
    Downloads downloads;
    HttpServer::Answer endless{"HTTP/1.1 200 OK\r\nX-Long: "};
    endless.Filling = qint64{1} << 40;
    server.Answers["/x"] = endless;
    server.Answers["/y"] = {HttpServer::Whole("200 OK", "text")};
    downloads.Component->SetRequestTimeout(600);
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Code, 12152);
    QCOMPARE(got.Info, QString("The header of the server's answer is too large."));
    QTRY_COMPARE(server.OpenConnections(), 0);
    QVERIFY2(server.Sent < qint64{64} * 1024 * 1024, qPrintable(QString::number(server.Sent)));
    QVERIFY(downloads.Fetch(server.Url("/y")).Arrived);
}

void HttpDownloadTest::SilenceTimesOut_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("at once") << QByteArray();
    QTest::newRow("in the header") << QByteArray("HTTP/1.1 200 OK\r\nContent-");
    QTest::newRow("before the file") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n");
    QTest::newRow("in the file") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc");
}

void HttpDownloadTest::SilenceTimesOut()
{
    QFETCH(QByteArray, answer);
    HttpServer server;
    Downloads downloads;
    downloads.Component->SetRequestTimeout(1);
    server.Answers["/x"] = {answer};
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Code, 12002);
    QCOMPARE(got.Info, QString("The server did not answer in time."));
    QTRY_COMPARE(server.OpenConnections(), 0);
}

void HttpDownloadTest::AServerThatIsNotThereIsAnError()
{
    QTcpServer taken;
    QVERIFY(taken.listen(QHostAddress::LocalHost));
    const int port = taken.serverPort();
    taken.close();
    Downloads downloads;
    const Inet::Download got = downloads.Fetch(QStringLiteral("http://127.0.0.1:%1/x").arg(port));
    QCOMPARE(got.Code, 12029);
    QCOMPARE(downloads.States(), (QList<int>{1, 2, 3, 11}));
}

void HttpDownloadTest::AHostThatIsNotThereIsAnError()
{
    Downloads downloads;
    const Inet::Download got = downloads.Fetch("http://nowhere.invalid/x");
    QCOMPARE(got.Code, 12007);
    QCOMPARE(downloads.States(), (QList<int>{1, 11}));
}

void HttpDownloadTest::ProgressIsTold_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("length known") << QByteArray("Content-Length: 1000000\r\n") << qint64{1'000'000};
    QTest::newRow("length unknown") << QByteArray() << qint64{-1};
}

// The server holds the rest back until there were three reports.
void HttpDownloadTest::ProgressIsTold()
{
    QFETCH(QByteArray, header);
    QFETCH(qint64, expected);
    Downloads downloads;
    QList<Inet::Progress> told;
    connect(downloads.Component.get(), &Inet::Progressed, this, [&](const Inet::Progress& one) { told << one; });
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    qsizetype left = 1'000'000;
    QTimer beat;
    connect(&server, &QTcpServer::newConnection, this, [&] {
        QTcpSocket* socket = server.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [&, socket] {
            socket->readAll();
            socket->write("HTTP/1.1 200 OK\r\n" + header + "\r\n");
            beat.start(10);
        });
        connect(&beat, &QTimer::timeout, socket, [&, socket] {
            const qsizetype piece = told.size() < 3 ? std::min(left, qsizetype{100}) : left;
            left -= piece;
            socket->write(QByteArray(piece, 'x'));
            if (left > 0) return;
            beat.stop();
            socket->disconnectFromHost();
        });
    });
    const Inet::Download got = downloads.Fetch(QStringLiteral("http://127.0.0.1:%1/x").arg(server.serverPort()));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(got.Size, 1'000'000);
    QVERIFY(told.size() >= 3);
    qint64 before = 0;
    for (const Inet::Progress& one : told) {
        QVERIFY(one.Done > before);
        QCOMPARE(one.Expected, expected);
        QVERIFY(one.Rate > 0);
        before = one.Done;
    }
}

void HttpDownloadTest::ASizeThatWasAnnouncedIsConfirmed()
{
    HttpServer server;
    Downloads downloads;
    QList<Inet::Confirmation> told;
    connect(downloads.Component.get(), &Inet::Transferred, this, [&](const Inet::Confirmation& one) { told << one; });
    server.Answers["/announced"] = {HttpServer::Whole("200 OK", Sample())};
    server.Answers["/not"] = {"HTTP/1.1 200 OK\r\n\r\n" + Sample(), HttpServer::Answer::Close};
    server.Answers["/short"] = {"HTTP/1.1 200 OK\r\nContent-Length: 999999\r\n\r\n" + Sample(),
                                HttpServer::Answer::Close};
    QVERIFY(downloads.Fetch(server.Url("/announced")).Arrived);
    QVERIFY(downloads.Fetch(server.Url("/not")).Arrived);
    QVERIFY(!downloads.Fetch(server.Url("/short")).Arrived);
    QCOMPARE(told.size(), 2);
    QCOMPARE(told[0].Bytes, Sample().size());
    QVERIFY(told[0].BySize);
    QCOMPARE(told[1].Bytes, Sample().size());
    QVERIFY(!told[1].BySize);
}

void HttpDownloadTest::MemoryDoesNotGrowWithTheFile()
{
    constexpr qint64 Size = qint64{400} * 1024 * 1024;
#ifdef __SANITIZE_ADDRESS__
    constexpr qint64 Bound = qint64{360} * 1024 * 1024;  // what is freed stays in quarantine for a while
#else
    constexpr qint64 Bound = qint64{100} * 1024 * 1024;
#endif
    HttpServer server;
    Downloads downloads;
    HttpServer::Answer big{"HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(Size) + "\r\n\r\n"};
    big.Filling = Size;
    server.Answers["/big"] = big;
    const qint64 before = MemoryInUse();
    qint64 most = 0;
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] { most = std::max(most, MemoryInUse()); });
    look.start(5);
    QEventLoop loop;
    connect(downloads.Component.get(), &Inet::StateChanged, &loop, [&](int state) {
        if (state == Inet::ResponseCompleted || state == Inet::Error) loop.quit();
    });
    downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
    downloads.Begin(server.Url("/big"));
    loop.exec();
    QVERIFY(downloads.Finish());
    QVERIFY(most > 0);
    QVERIFY2(downloads.Got.Arrived, qPrintable(downloads.Got.Info));
    QCOMPARE(downloads.Got.Size, Size);
    QVERIFY2(most - before < Bound, qPrintable(QString::number(most - before)));
}

void HttpDownloadTest::CancelEndsItInEveryState_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("whenAsked");
    QTest::newRow("just begun") << QByteArray() << false;
    QTest::newRow("asked") << QByteArray() << true;
    QTest::newRow("in the header") << QByteArray("HTTP/1.1 200 OK\r\nContent-") << true;
    QTest::newRow("in the file") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc") << true;
    QTest::newRow("in a refusal") << QByteArray("HTTP/1.1 401 Who?\r\nContent-") << true;
}

void HttpDownloadTest::CancelEndsItInEveryState()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, whenAsked);
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {answer};
    downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
    downloads.Begin(server.Url("/x"));
    if (whenAsked) QTRY_COMPARE(server.Requests.size(), 1);
    if (answer.contains("200") && answer.endsWith("abc")) QTRY_VERIFY(!downloads.Files().isEmpty());
    if (!downloads.Component->StillExecuting()) return;
    downloads.Component->Cancel();
    QVERIFY(!downloads.Component->StillExecuting());
    QCOMPARE(downloads.Answers, 1);
    QVERIFY(!downloads.Got.Arrived);
    QCOMPARE(downloads.Got.Code, 12017);
    QCOMPARE(downloads.States().last(), 0);
    if (whenAsked) QCOMPARE(downloads.States().last(2), (QList<int>{10, 0}));
    QCOMPARE(downloads.Files(), QStringList());
    QTRY_COMPARE(server.OpenConnections(), 0);
    server.Answers["/x"] = {HttpServer::Whole("200 OK", "text")};
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
}

void HttpDownloadTest::TheEndComesSoonInEveryState_data()
{
    CancelEndsItInEveryState_data();
}

void HttpDownloadTest::TheEndComesSoonInEveryState()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, whenAsked);
    HttpServer server;
    Downloads downloads;
    downloads.Component->SetRequestTimeout(600);
    server.Answers["/x"] = {answer};
    downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
    downloads.Begin(server.Url("/x"));
    if (whenAsked) QTRY_COMPARE(server.Requests.size(), 1);
    downloads.Leave();
    QCOMPARE(downloads.Files(), QStringList());
    QTRY_COMPARE(server.OpenConnections(), 0);
}

void HttpDownloadTest::NothingOfACancelledDownloadComesLater()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole("200 OK", "text")};
    for (int round = 0; round < 20; ++round) {
        downloads.Begin(server.Url("/x"));
        if (round % 2 == 0) QCoreApplication::processEvents();
        if (round % 3 == 0) QTRY_VERIFY(!downloads.States().isEmpty());
        if (downloads.Component->StillExecuting()) downloads.Component->Cancel();
        QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
        QCOMPARE(downloads.States(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 12}));
    }
}

QTEST_GUILESS_MAIN(HttpDownloadTest)
#include "http_download_test.moc"
