#include "platform/pump.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <fcntl.h>
#include <io.h>
#include <memory>
#include <utility>
#include <winsock2.h>

namespace {

constexpr qint64 MiB = qint64{1024} * 1024;

/// Two connected sockets; ours does not block.
struct Pair {
    SOCKET Ours = INVALID_SOCKET;
    SOCKET Theirs = INVALID_SOCKET;

    Pair()
    {
        const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof address;
        auto* raw = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener, raw, size) != 0 || listen(listener, 1) != 0) qFatal("no port to listen on");
        getsockname(listener, raw, &size);
        Ours = socket(AF_INET, SOCK_STREAM, 0);
        if (connect(Ours, raw, size) != 0) qFatal("no connection");
        Theirs = accept(listener, nullptr, nullptr);
        closesocket(listener);
        for (const SOCKET end : {Ours, Theirs}) {
            u_long yes = 1;
            ioctlsocket(end, FIONBIO, &yes);
        }
    }

    ~Pair()
    {
        closesocket(Ours);
        closesocket(Theirs);
    }

    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    int Number() const { return static_cast<int>(Ours); }

    /// Sends from their side as much as is taken now; how much that was.
    qsizetype SendSome(const QByteArray& bytes, qsizetype from = 0) const
    {
        return std::max(0, send(Theirs, bytes.data() + from, static_cast<int>(bytes.size() - from), 0));
    }

    /// Appends what has arrived at their side.
    void ReceiveSome(QByteArray& bytes) const
    {
        QByteArray buffer(65536, '\0');
        int count = 0;
        while ((count = recv(Theirs, buffer.data(), static_cast<int>(buffer.size()), 0)) > 0)
            bytes.append(buffer.constData(), count);
    }

    static bool WaitUntilReadable(SOCKET end)
    {
        fd_set ends;
        FD_ZERO(&ends);
        FD_SET(end, &ends);
        timeval limit{10, 0};
        return select(0, &ends, nullptr, nullptr, &limit) == 1;
    }
};

QByteArray Pattern(qint64 size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    std::uint32_t state = 12345;
    std::generate(bytes.begin(), bytes.end(), [&state] {
        state = state * 1664525 + 1013904223;
        return static_cast<char>(state >> 24);
    });
    return bytes;
}

}  // namespace

class WindowsPumpTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void WhatASocketBringsIsInTheFile_data();
    void WhatASocketBringsIsInTheFile();
    void NothingThereIsNoEnd();
    void EveryMoveLeavesItsBytesInTheFile();
    void BytesGoToTheFilesOwnPosition();
    void AFileThatCannotBeWrittenIsAnErrorOfTheTarget();
    void AFileArrivesAtTheOtherSide_data();
    void AFileArrivesAtTheOtherSide();
    void AFullSocketIsNoEnd();
    void AFileBeyondFourGiBIsSentFromItsOffset();
    void TheFilesOwnPositionIsNotMoved();
    void AFileThatShrinksEndsEarly();
    void ASocketClosedByTheOtherSideIsAnErrorOfTheTarget();

private:
    QByteArray Contents() const
    {
        QFile file(Name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    void Fill(const QByteArray& bytes) const
    {
        QCOMPARE(_write(File, bytes.constData(), static_cast<unsigned>(bytes.size())), static_cast<int>(bytes.size()));
        _lseeki64(File, 0, SEEK_SET);
    }

    /// Pumps the file from an offset to the pair's far side; what arrived.
    QByteArray SendAll(const Pair& pair, std::int64_t offset = 0) const
    {
        FileToSocket pump(File, pair.Number(), offset);
        QByteArray received;
        std::size_t moved = 0;
        PumpResult result;
        do {
            result = pump.Move();
            moved += result.Bytes;
            pair.ReceiveSome(received);
        } while (result.End == PumpEnd::Moved || result.End == PumpEnd::WouldBlock);
        if (result.End != PumpEnd::End) return "failed";
        while (received.size() < static_cast<qsizetype>(moved) && Pair::WaitUntilReadable(pair.Theirs))
            pair.ReceiveSome(received);
        return received;
    }

    std::unique_ptr<QTemporaryDir> Folder;
    QString Name;
    int File = -1;
};

void WindowsPumpTest::initTestCase()
{
    WSADATA facts;
    QCOMPARE(WSAStartup(MAKEWORD(2, 2), &facts), 0);
}

void WindowsPumpTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Name = Folder->filePath("file");
    File = _wopen(Name.toStdWString().c_str(), _O_RDWR | _O_CREAT | _O_BINARY, 0600);
    QVERIFY(File >= 0);
}

void WindowsPumpTest::cleanup()
{
    _close(File);
    Folder.reset();
}

void WindowsPumpTest::WhatASocketBringsIsInTheFile_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 4096, 65537, 3'000'000, 20'000'000}) QTest::addRow("%d bytes", size) << size;
}

void WindowsPumpTest::WhatASocketBringsIsInTheFile()
{
    QFETCH(int, size);
    const QByteArray bytes = Pattern(size);
    const Pair pair;
    SocketToFile pump(pair.Number(), File);
    qsizetype sent = 0;
    std::size_t moved = 0;
    PumpResult result;
    do {
        sent += pair.SendSome(bytes, sent);
        if (sent == bytes.size()) shutdown(pair.Theirs, SD_SEND);
        result = pump.Move();
        QCOMPARE(result.Error, 0);
        moved += result.Bytes;
    } while (result.End == PumpEnd::Moved || result.End == PumpEnd::WouldBlock);
    QCOMPARE(result.End, PumpEnd::End);
    QCOMPARE(moved, static_cast<std::size_t>(size));
    QVERIFY(Contents() == bytes);
}

void WindowsPumpTest::NothingThereIsNoEnd()
{
    const Pair pair;
    SocketToFile pump(pair.Number(), File);
    const PumpResult result = pump.Move();
    QCOMPARE(result.End, PumpEnd::WouldBlock);
    QCOMPARE(result.Bytes, std::size_t{0});
    QCOMPARE(result.Error, 0);
}

void WindowsPumpTest::EveryMoveLeavesItsBytesInTheFile()
{
    const Pair pair;
    SocketToFile pump(pair.Number(), File);
    QByteArray all;
    for (const QByteArray piece : {"one", "two", "three"}) {
        QCOMPARE(pair.SendSome(piece), piece.size());
        all += piece;
        QVERIFY(Pair::WaitUntilReadable(pair.Ours));
        const PumpResult result = pump.Move();
        QCOMPARE(result.End, PumpEnd::WouldBlock);
        QCOMPARE(result.Bytes, static_cast<std::size_t>(piece.size()));
        QCOMPARE(Contents(), all);
    }
}

void WindowsPumpTest::BytesGoToTheFilesOwnPosition()
{
    const Pair pair;
    Fill("abcdef");
    _lseeki64(File, 2, SEEK_SET);
    QCOMPARE(pair.SendSome("XY"), 2);
    QVERIFY(Pair::WaitUntilReadable(pair.Ours));
    SocketToFile pump(pair.Number(), File);
    QCOMPARE(pump.Move().Bytes, std::size_t{2});
    QCOMPARE(Contents(), QByteArray("abXYef"));
}

void WindowsPumpTest::AFileThatCannotBeWrittenIsAnErrorOfTheTarget()
{
    const Pair pair;
    const int readOnly = _wopen(Name.toStdWString().c_str(), _O_RDONLY | _O_BINARY);
    QCOMPARE(pair.SendSome("hello"), 5);
    QVERIFY(Pair::WaitUntilReadable(pair.Ours));
    SocketToFile pump(pair.Number(), readOnly);
    const PumpResult result = pump.Move();
    _close(readOnly);
    QCOMPARE(result.End, PumpEnd::TargetError);
    QCOMPARE(result.Error, ERROR_ACCESS_DENIED);
}

void WindowsPumpTest::AFileArrivesAtTheOtherSide_data()
{
    WhatASocketBringsIsInTheFile_data();
}

void WindowsPumpTest::AFileArrivesAtTheOtherSide()
{
    QFETCH(int, size);
    const QByteArray bytes = Pattern(size);
    Fill(bytes);
    QVERIFY(SendAll(Pair()) == bytes);
}

void WindowsPumpTest::AFullSocketIsNoEnd()
{
    const Pair pair;
    const QByteArray bytes = Pattern(64 * MiB);
    Fill(bytes);
    FileToSocket pump(File, pair.Number());
    PumpResult result;
    std::size_t moved = 0;
    do {
        result = pump.Move();
        moved += result.Bytes;
    } while (result.End == PumpEnd::Moved);
    QCOMPARE(result.End, PumpEnd::WouldBlock);
    QVERIFY(moved > 0);
    QVERIFY(moved < static_cast<std::size_t>(bytes.size()));
}

void WindowsPumpTest::AFileBeyondFourGiBIsSentFromItsOffset()
{
    constexpr std::int64_t Offset = (std::int64_t{1} << 32) + 12345;
    const QByteArray bytes = Pattern(100'000);
    // The beginning is a hole.
    DWORD returned = 0;
    DeviceIoControl(reinterpret_cast<HANDLE>(_get_osfhandle(File)), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned,
                    nullptr);
    _lseeki64(File, Offset, SEEK_SET);
    Fill(bytes);
    QVERIFY(SendAll(Pair(), Offset) == bytes);
}

void WindowsPumpTest::TheFilesOwnPositionIsNotMoved()
{
    Fill("abcdef");
    _lseeki64(File, 3, SEEK_SET);
    QCOMPARE(SendAll(Pair()), QByteArray("abcdef"));
    QCOMPARE(_telli64(File), std::int64_t{3});
}

void WindowsPumpTest::AFileThatShrinksEndsEarly()
{
    Fill(Pattern(64 * MiB));
    const Pair pair;
    FileToSocket pump(File, pair.Number());
    PumpResult result = pump.Move();
    while (result.End == PumpEnd::Moved) result = pump.Move();
    QCOMPARE(result.End, PumpEnd::WouldBlock);
    QCOMPARE(_chsize_s(File, 1000), 0);
    QCOMPARE(pump.Move().End, PumpEnd::End);
}

void WindowsPumpTest::ASocketClosedByTheOtherSideIsAnErrorOfTheTarget()
{
    Fill(Pattern(64 * MiB));
    Pair pair;
    closesocket(std::exchange(pair.Theirs, INVALID_SOCKET));
    FileToSocket pump(File, pair.Number());
    PumpResult result;
    do {
        result = pump.Move();
    } while (result.End == PumpEnd::Moved || result.End == PumpEnd::WouldBlock);
    QCOMPARE(result.End, PumpEnd::TargetError);
    QVERIFY(result.Error == WSAECONNRESET || result.Error == WSAECONNABORTED);
}

QTEST_GUILESS_MAIN(WindowsPumpTest)
#include "windows_pump_test.moc"
