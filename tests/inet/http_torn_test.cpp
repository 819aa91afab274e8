#include "inet/http_download.h"
#include "support/manual_clock.h"
#include "support/memory_network.h"

#include <QTemporaryDir>
#include <QTest>
#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <fstream>

/// Downloads by HTTP over wires in memory, torn off, reset, stalled or cancelled behind every single byte of what a
/// server says. Always one end within the time-out and a sentence, no file damaged, nothing left open, and the next
/// download works.
class HttpTornTest final : public QObject {
    Q_OBJECT

private slots:
    void AnswersMayBeTornAnywhere_data();
    void AnswersMayBeTornAnywhere();

    void ACancelWorksAnywhere_data() { AnswersMayBeTornAnywhere_data(); }

    void ACancelWorksAnywhere();

    void EverySlicingGivesTheSame_data() { AnswersMayBeTornAnywhere_data(); }

    void EverySlicingGivesTheSame();
    void AHeaderHasOneTimeLimit();
    void AFileMayComeSlowly();
    void HeadersHaveALimit_data();
    void HeadersHaveALimit();
    void AnnouncementsAreReadOver();
    void LengthsMustAgree_data();
    void LengthsMustAgree();
    void ANameThatIsNeverFoundTimesOut();
    void TheServerIsToldItsName_data();
    void TheServerIsToldItsName();
};

namespace {

constexpr Ftp::Milliseconds Limit = std::chrono::seconds(20);
constexpr auto Ahead = Ftp::Milliseconds(10);

/// Answers one connection after the other, as soon as the request on it is complete.
class AnsweringServer final : public MemoryServer {
public:
    enum Ends { Stay, Close, Reset };

    struct Reaction {
        std::string Bytes;
        Ends Then = Stay;
        std::size_t Slice = SIZE_MAX;
        Ftp::Milliseconds Pause{0};  ///< between one byte and the next; 0: all at once
    };

    explicit AnsweringServer(ManualClock& clock) : Time(clock) {}

    std::vector<Reaction> Reactions;
    std::vector<std::string> Requests;
    bool IsLookupSilent = false;

    std::size_t OpenLinks() const
    {
        return std::count_if(Links.begin(), Links.end(), [](const auto& link) { return !link->ClientGone; });
    }

    Answer Accept(std::shared_ptr<MemoryLink> link) override
    {
        Links.push_back(link);
        const Reaction reaction = Links.size() > Reactions.size() ? Reaction() : Reactions[Links.size() - 1];
        link->Slice = reaction.Slice;
        link->Notified = [this, &link = *link, reaction, answered = false]() mutable {
            if (answered || !link.ToServer.ends_with("\r\n\r\n")) return;
            answered = true;
            Requests.push_back(link.ToServer);
            Say(link, reaction);
        };
        return Answer::Accepted;
    }

    std::vector<asio::ip::address> Find(const std::string&, bool& silent) override
    {
        silent = IsLookupSilent;
        return {asio::ip::make_address("127.0.0.1")};
    }

    void StopDripping() { Drip.reset(); }

    void Forget()
    {
        StopDripping();
        Links.clear();
        Requests.clear();
    }

private:
    void Say(MemoryLink& link, const Reaction& reaction)
    {
        if (reaction.Pause > Ftp::Milliseconds(0)) {
            DripNext(link, reaction, 0);
            return;
        }
        link.ToClient = reaction.Bytes;
        link.ServerEnded = reaction.Then == Close;
        link.Broken = reaction.Then == Reset;
        link.Wake();
    }

    void DripNext(MemoryLink& link, const Reaction& reaction, std::size_t at)
    {
        if (link.ClientGone || at == reaction.Bytes.size()) return;
        link.ToClient += reaction.Bytes[at];
        link.Wake();
        Drip = Time.After(reaction.Pause, [this, &link, reaction, at] { DripNext(link, reaction, at + 1); });
    }

    ManualClock& Time;
    std::vector<std::shared_ptr<MemoryLink>> Links;
    std::unique_ptr<Ftp::Clock::Alarm> Drip;
};

/// Downloads into the file "kept" of a folder of its own.
class Visit {
public:
    Visit() { Store("old"); }

    Ftp::Outcome Fetch(bool cancels = false)
    {
        HttpRequest request;
        request.Url = QUrl(Address);
        request.User = "ann";
        request.Password = "hidden";
        request.Limit = Limit;
        if (IntoFile) request.File = Place();
        std::optional<Ftp::Outcome> outcome;
        States.clear();
        const Ftp::Milliseconds start = Clock.Now();
        asio::co_spawn(Context, Web.Fetch(std::move(request)), [&](const std::exception_ptr& error, Ftp::Outcome got) {
            outcome = error ? Ftp::Outcome{false, -1, "it threw", {}} : std::move(got);
        });
        Settle();
        if (cancels) Web.Cancel();
        do Settle();
        while (!outcome && Clock.JumpToNextAlarm());
        Duration = Clock.Now() - start;
        Settle();
        return outcome.value_or(Ftp::Outcome{false, -1, "it never ended", {}});
    }

    void Store(const std::string& bytes) const { std::ofstream(Place(), std::ios::binary) << bytes; }

    QByteArray Stored() const
    {
        QFile file(Folder.filePath("kept"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QStringList Files() const
    {
        return QDir(Folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    asio::io_context Context;
    QString Address = "http://server.test/x";
    bool IntoFile = true;
    ManualClock Clock;
    AnsweringServer Server{Clock};
    std::vector<int> States;
    Ftp::Milliseconds Duration{0};

private:
    std::filesystem::path Place() const { return std::filesystem::path(Folder.filePath("kept").toStdString()); }

    void Settle()
    {
        Context.restart();
        while (Context.poll() > 0) Context.restart();
    }

    QTemporaryDir Folder;
    MemoryNetwork Net{Context.get_executor(), Server};
    HttpDownload Web{Net, Clock, [](const auto&, const auto&, auto) { return Ftp::Proxy(); },
                     Ftp::Observer{[this](int state) { States.push_back(state); }, {}}};
};

const std::string File = "0123456789abcdefghij";
const std::string Whole = "HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n" + File;
const std::string Chunked =
    "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n01234\r\nF;x=y\r\n56789abcdefghij\r\n"
    "0\r\nTrailer: x\r\n\r\n";
const std::string Elsewhere = "HTTP/1.1 302 Found\r\nLocation: /y\r\nContent-Length: 4\r\n\r\n";
const std::string Who = "HTTP/1.1 401 Who\r\nWWW-Authenticate: NTLM\r\nWWW-Authenticate: Digest realm=\"a\", "
                        "nonce=\"b\", qop=\"auth\"\r\n\r\n";

/// The answers of a download to its end.
std::vector<std::string> AnswersOf(const QByteArray& name)
{
    if (name == "whole") return {Whole};
    if (name == "chunks") return {Chunked};
    if (name == "redirect") return {Elsewhere, Whole};
    return {Who, Elsewhere, Who, "HTTP/1.1 103 Hints\r\nLink: x\r\n\r\n" + Chunked};
}

void React(Visit& visit, const std::vector<std::string>& answers, std::size_t slice = SIZE_MAX)
{
    visit.Server.Forget();
    visit.Server.Reactions.clear();
    for (const std::string& answer : answers)
        visit.Server.Reactions.push_back({answer, AnsweringServer::Stay, slice, Ftp::Milliseconds(0)});
}

/// Nothing of the one before is in the way of the next.
void CheckNext(Visit& visit, const std::vector<std::string>& answers)
{
    QCOMPARE(visit.Server.OpenLinks(), 0U);
    visit.Server.StopDripping();
    QVERIFY(!visit.Clock.JumpToNextAlarm());
    QCOMPARE(visit.Files(), QStringList{"kept"});
    React(visit, answers);
    visit.IntoFile = false;
    const Ftp::Outcome got = visit.Fetch();
    QVERIFY2(got.Good, got.Text.c_str());
    QCOMPARE(got.Reply, File);
    QCOMPARE(visit.States, (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    visit.Server.Forget();
    visit.IntoFile = true;
}

void CheckFailure(const Visit& visit, const Ftp::Outcome& got)
{
    QVERIFY(!got.Good);
    QVERIFY2(got.Code >= 12000, got.Text.c_str());
    QVERIFY2(got.Text.size() > 5 && got.Text.ends_with('.'), got.Text.c_str());
    QVERIFY(got.Reply.empty());
    QCOMPARE(visit.Stored(), QByteArray("old"));
}

}  // namespace

void HttpTornTest::AnswersMayBeTornAnywhere_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"whole", "chunks", "redirect", "everything"}) QTest::newRow(name) << QByteArray(name);
}

void HttpTornTest::AnswersMayBeTornAnywhere()
{
    QFETCH(QByteArray, name);
    const std::vector<std::string> answers = AnswersOf(name);
    Visit visit;
    for (std::size_t which = 0; which < answers.size(); ++which) {
        for (std::size_t count = 0; count < answers[which].size(); ++count) {
            for (const auto end : {AnsweringServer::Stay, AnsweringServer::Close, AnsweringServer::Reset}) {
                React(visit, answers);
                visit.Server.Reactions[which] = {answers[which].substr(0, count), end, SIZE_MAX, Ftp::Milliseconds(0)};
                const Ftp::Outcome got = visit.Fetch();
                CheckFailure(visit, got);
                if (QTest::currentTestFailed()) return;
                QCOMPARE(visit.Server.Requests.size(), which + 1);
                const bool stalls = end == AnsweringServer::Stay;
                QCOMPARE(got.Code == Ftp::TimeOutError, stalls);
                QVERIFY(stalls ? visit.Duration >= Limit && visit.Duration <= Limit + Ahead
                               : visit.Duration == Ftp::Milliseconds(0));
                CheckNext(visit, answers);
                if (QTest::currentTestFailed()) return;
            }
        }
    }
}

void HttpTornTest::ACancelWorksAnywhere()
{
    QFETCH(QByteArray, name);
    const std::vector<std::string> answers = AnswersOf(name);
    Visit visit;
    for (std::size_t which = 0; which < answers.size(); ++which) {
        for (std::size_t count = 0; count < answers[which].size(); ++count) {
            React(visit, answers);
            visit.Server.Reactions[which].Bytes.resize(count);
            const Ftp::Outcome got = visit.Fetch(true);
            CheckFailure(visit, got);
            QCOMPARE(got.Code, int(Ftp::CancelledError));
            QCOMPARE(visit.Duration, Ftp::Milliseconds(0));
            CheckNext(visit, answers);
            if (QTest::currentTestFailed()) return;
        }
    }
}

void HttpTornTest::EverySlicingGivesTheSame()
{
    QFETCH(QByteArray, name);
    const std::vector<std::string> answers = AnswersOf(name);
    Visit visit;
    for (std::size_t slice = 1; slice <= 60; ++slice) {
        React(visit, answers, slice);
        const Ftp::Outcome got = visit.Fetch();
        QVERIFY2(got.Good, got.Text.c_str());
        QCOMPARE(got.Transferred->Bytes, File.size());
        QCOMPARE(got.Transferred->BySize, answers.back() == Whole);
        QCOMPARE(visit.Stored(), QByteArray::fromStdString(File));
        QCOMPARE(visit.Server.Requests.size(), answers.size());
    }
}

void HttpTornTest::AHeaderHasOneTimeLimit()
{
    Visit visit;
    visit.Server.Reactions = {{"HTTP/1.1 200 OK\r\nX-Long: " + std::string(100, 'x'), AnsweringServer::Stay, SIZE_MAX,
                               std::chrono::seconds(1)}};
    const Ftp::Outcome got = visit.Fetch();
    CheckFailure(visit, got);
    QCOMPARE(got.Text, "The server did not answer in time.");
    QVERIFY(visit.Duration >= Limit && visit.Duration <= Limit + Ahead);
    CheckNext(visit, {Whole});
}

// The header is there in time, and each byte of the file is progress.
void HttpTornTest::AFileMayComeSlowly()
{
    Visit visit;
    visit.Server.Reactions = {{Whole, AnsweringServer::Stay, SIZE_MAX, Limit / static_cast<int>(Whole.size() + 1)}};
    QVERIFY(visit.Fetch().Good);
    visit.Store("old");
    visit.Server.Forget();
    visit.Server.Reactions = {
        {"HTTP/1.1 200 OK\r\n\r\n" + std::string(30, 'x'), AnsweringServer::Close, SIZE_MAX, std::chrono::seconds(1)}};
    const Ftp::Outcome got = visit.Fetch();
    CheckFailure(visit, got);
    QVERIFY(visit.Duration >= Limit + std::chrono::seconds(30));
    CheckNext(visit, {Whole});
}

void HttpTornTest::HeadersHaveALimit_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("told");
    const QByteArray begin = "HTTP/1.1 200 OK\r\n";
    const QString large = "The header of the server's answer is too large.";
    const QString strange = "The server's answer was not understood.";
    QTest::newRow("one line") << begin + "X: " + QByteArray(300'000, 'x') << large;
    QTest::newRow("many lines") << begin + QByteArray("X: y\r\n").repeated(50'000) << large;
    QTest::newRow("a reason") << "HTTP/1.1 200 " + QByteArray(300'000, 'x') << large;
    QTest::newRow("announcements") << QByteArray("HTTP/1.1 103 Soon\r\n\r\n").repeated(1000) << strange;
    QTest::newRow("another protocol asked for") << QByteArray("HTTP/1.1 101 Switch\r\n\r\n") << strange;
    const QByteArray chunked = begin + "Transfer-Encoding: chunked\r\n\r\n";
    QTest::newRow("a chunk's size") << chunked + QByteArray(100'000, '0') << strange;
    QTest::newRow("a chunk's remark") << chunked + "5;" + QByteArray(100'000, 'x') << strange;
    QTest::newRow("behind the chunks") << chunked + "0\r\n" + QByteArray("X: y\r\n").repeated(100'000) << large;
}

void HttpTornTest::HeadersHaveALimit()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, told);
    Visit visit;
    visit.Server.Reactions = {{bytes.toStdString(), AnsweringServer::Stay, SIZE_MAX, Ftp::Milliseconds(0)}};
    const Ftp::Outcome got = visit.Fetch();
    CheckFailure(visit, got);
    QCOMPARE(QString::fromStdString(got.Text), told);
    QCOMPARE(visit.Duration, Ftp::Milliseconds(0));
    CheckNext(visit, {Whole});
}

void HttpTornTest::AnnouncementsAreReadOver()
{
    Visit visit;
    CheckNext(visit, {"HTTP/1.1 100 Go on\r\n\r\nHTTP/1.1 103 Soon\r\nLink: x\r\n\r\n" + Whole});
    CheckNext(visit, {"HTTP/1.1 100 \r\n\r\n" + Whole});
}

void HttpTornTest::LengthsMustAgree_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<bool>("good");
    QTest::newRow("said twice") << QByteArray("Content-Length: 20\r\nContent-Length: 20") << true;
    QTest::newRow("said twice in one") << QByteArray("Content-Length: 20, 20") << true;
    QTest::newRow("on a line of its own") << QByteArray("Content-Length:\r\n 20") << true;
    QTest::newRow("two") << QByteArray("Content-Length: 20\r\nContent-Length: 10") << false;
    QTest::newRow("two in one") << QByteArray("Content-Length: 20, 10") << false;
    QTest::newRow("negative") << QByteArray("Content-Length: -20") << false;
    QTest::newRow("with a sign") << QByteArray("Content-Length: +20") << false;
    QTest::newRow("in other digits") << QByteArray("Content-Length: 0x14") << false;
    QTest::newRow("beyond all numbers") << QByteArray("Content-Length: 99999999999999999999") << false;
    QTest::newRow("no number") << QByteArray("Content-Length: many") << false;
    QTest::newRow("packed") << QByteArray("Content-Length: 20\r\nTransfer-Encoding: gzip, chunked") << false;
    QTest::newRow("in chunks twice") << QByteArray("Transfer-Encoding: chunked, chunked") << false;
}

void HttpTornTest::LengthsMustAgree()
{
    QFETCH(QByteArray, fields);
    QFETCH(bool, good);
    Visit visit;
    visit.Server.Reactions = {{"HTTP/1.1 200 OK\r\n" + fields.toStdString() + "\r\n\r\n" + File, AnsweringServer::Close,
                               SIZE_MAX, Ftp::Milliseconds(0)}};
    const Ftp::Outcome got = visit.Fetch();
    if (!good) CheckFailure(visit, got);
    QVERIFY2(got.Good == good, got.Text.c_str());
    CheckNext(visit, {Whole});
}

void HttpTornTest::ANameThatIsNeverFoundTimesOut()
{
    Visit visit;
    visit.Server.IsLookupSilent = true;
    const Ftp::Outcome got = visit.Fetch();
    CheckFailure(visit, got);
    QCOMPARE(got.Code, int(Ftp::TimeOutError));
    QCOMPARE(visit.States, std::vector<int>{1});
    visit.Server.IsLookupSilent = false;
    CheckNext(visit, {Whole});
}

void HttpTornTest::TheServerIsToldItsName_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("request");
    const auto row = [](const char* address, const QByteArray& target, const QByteArray& host) {
        QTest::newRow(address) << QString::fromUtf8(address) << "GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\n";
    };
    row("http://server.test", "/", "server.test");
    row("http://server.test:80/x", "/x", "server.test");
    row("http://server.test:8080/x?", "/x?", "server.test:8080");
    row("http://server.test:443/?a=%20b#c", "/?a=%20b", "server.test:443");
    row("http://127.0.0.1/x", "/x", "127.0.0.1");
    row("http://[::1]/x", "/x", "[::1]");
    row("http://[::1]:8080/x", "/x", "[::1]:8080");
    row("http://gr\xc3\xbc\xc3\x9f"
        "e.test/\xc3\xa4",
        "/%C3%A4", "xn--gre-6ka8l.test");
}

void HttpTornTest::TheServerIsToldItsName()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, request);
    Visit visit;
    visit.Address = address;
    React(visit, {Whole});
    QVERIFY(visit.Fetch().Good);
    const QByteArray said = QByteArray::fromStdString(visit.Server.Requests.at(0));
    QVERIFY2(said.startsWith(request), said.constData());
    QVERIFY(!said.toLower().contains("connection"));
}

QTEST_GUILESS_MAIN(HttpTornTest)
#include "http_torn_test.moc"
