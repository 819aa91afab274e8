#include "platform/pump.h"

#include <QByteArray>
#include <QTest>
#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t MiB = std::size_t{1024} * 1024;

/// A descriptor that is closed in the end.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : Number(number) {}

    ~Descriptor() { Close(); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void Set(int number)
    {
        Close();
        Number = number;
    }

    void Close()
    {
        if (Number >= 0) ::close(Number);
        Number = -1;
    }

    operator int() const { return Number; }

private:
    int Number;
};

/// Two connected sockets; ours does not block.
struct Pair {
    Descriptor Ours;
    Descriptor Theirs;

    Pair()
    {
        std::array<int, 2> ends{};
        if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) std::abort();
        Take(ends[0], ends[1]);
    }

    explicit Pair(const sockaddr_in& loopback)
    {
        const Descriptor listener(::socket(AF_INET, SOCK_STREAM, 0));
        sockaddr_in address = loopback;
        socklen_t size = sizeof address;
        auto* raw = reinterpret_cast<sockaddr*>(&address);
        if (::bind(listener, raw, size) != 0 || ::listen(listener, 1) != 0) std::abort();
        if (::getsockname(listener, raw, &size) != 0) std::abort();
        const int ours = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::connect(ours, raw, size) != 0) std::abort();
        Take(ours, ::accept(listener, nullptr, nullptr));
    }

private:
    void Take(int ours, int theirs)
    {
        ::fcntl(ours, F_SETFL, O_NONBLOCK);
        Ours.Set(ours);
        Theirs.Set(theirs);
    }
};

sockaddr_in Loopback()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// A file that has no name and goes with its descriptor.
int TemporaryFile(int flags = 0)
{
    std::string name = "/tmp/pump_test_XXXXXX";
    const int file = ::mkostemp(name.data(), flags);
    ::unlink(name.c_str());
    return file;
}

QByteArray Pattern(std::size_t size)
{
    QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
    std::uint32_t state = 12345;
    std::generate(bytes.begin(), bytes.end(), [&state] {
        state = state * 1664525 + 1013904223;
        return static_cast<char>(state >> 24);
    });
    return bytes;
}

bool Fill(int file, const QByteArray& bytes)
{
    return ::pwrite(file, bytes.data(), static_cast<std::size_t>(bytes.size()), 0) == bytes.size();
}

QByteArray Contents(int file)
{
    struct stat state {};

    ::fstat(file, &state);
    QByteArray bytes(state.st_size, '\0');
    if (::pread(file, bytes.data(), static_cast<std::size_t>(bytes.size()), 0) != bytes.size()) return {};
    return bytes;
}

/// Sends as much as the socket takes now; how much that was.
qsizetype SendSome(int socket, const QByteArray& bytes, qsizetype from)
{
    const ssize_t sent =
        ::send(socket, bytes.data() + from, static_cast<std::size_t>(bytes.size() - from), MSG_DONTWAIT | MSG_NOSIGNAL);
    return std::max<ssize_t>(sent, 0);
}

/// Appends what the socket holds now.
void ReceiveSome(int socket, QByteArray& bytes)
{
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    while ((count = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0) {
        bytes.append(buffer.data(), count);
    }
}

bool WaitFor(int socket, short events)
{
    pollfd waiting{socket, events, 0};
    return ::poll(&waiting, 1, 10'000) == 1;
}

/// Pumps all of the bytes from the pair's far side into the file.
void ReceiveAll(Pair& pair, int file, const QByteArray& bytes)
{
    SocketToFile pump(pair.Ours, file);
    qsizetype sent = 0;
    std::size_t moved = 0;
    PumpResult result;
    do {
        if (result.End == PumpEnd::WouldBlock && sent == bytes.size()) QVERIFY(WaitFor(pair.Ours, POLLIN));
        sent += SendSome(pair.Theirs, bytes, sent);
        if (sent == bytes.size()) ::shutdown(pair.Theirs, SHUT_WR);
        result = pump.Move();
        QCOMPARE(result.Error, 0);
        moved += result.Bytes;
    } while (result.End == PumpEnd::Moved || result.End == PumpEnd::WouldBlock);
    QCOMPARE(result.End, PumpEnd::End);
    QCOMPARE(moved, static_cast<std::size_t>(bytes.size()));
}

/// Pumps the file from an offset to the pair's far side; what arrived.
QByteArray SendAll(Pair& pair, int file, std::int64_t offset = 0)
{
    FileToSocket pump(file, pair.Ours, offset);
    QByteArray received;
    std::size_t moved = 0;
    PumpResult result;
    do {
        result = pump.Move();
        moved += result.Bytes;
        if (result.End == PumpEnd::WouldBlock) WaitFor(pair.Theirs, POLLIN);
        ReceiveSome(pair.Theirs, received);
    } while (result.End == PumpEnd::Moved || result.End == PumpEnd::WouldBlock);
    if (result.End != PumpEnd::End || result.Error != 0) return "failed";
    while (received.size() < static_cast<qsizetype>(moved) && WaitFor(pair.Theirs, POLLIN)) {
        ReceiveSome(pair.Theirs, received);
    }
    return received;
}

}  // namespace

class PumpTest : public QObject {
    Q_OBJECT

private slots:

    void initTestCase() { BlockPumpSignals(); }

    void WhatASocketBringsIsInTheFile_data();
    void WhatASocketBringsIsInTheFile();
    void AFileThatRefusesTheShortWayGetsEveryByte();
    void NothingThereIsNoEnd();
    void EveryMoveLeavesItsBytesInTheFile();
    void BytesGoToTheFilesOwnPosition();
    void AnEndlessSourceLeavesRoomForOthers();
    void AFullDiskIsAnErrorOfTheTarget();
    void AFileOverTheLimitOfItsSizeIsAnErrorOfTheTarget();
    void AFileThatCannotBeWrittenIsAnErrorOfTheTarget();
    void AConnectionResetIsAnErrorOfTheSource();
    void AFileArrivesAtTheOtherSide_data();
    void AFileArrivesAtTheOtherSide();
    void AFileThatRefusesTheShortWayArrivesToo();
    void AFullSocketIsNoEnd();
    void AFileBeyondFourGiBIsSentFromItsOffset();
    void TheFilesOwnPositionIsNotMoved();
    void AFileThatShrinksEndsEarly();
    void ASocketClosedByTheOtherSideIsAnErrorOfTheTarget();
    void AFolderIsAnErrorOfTheSource();
};

void PumpTest::WhatASocketBringsIsInTheFile_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("tcp");
    for (const int size : {0, 1, 4096, 65537, 3'000'000, 20'000'000}) {
        QTest::addRow("%d bytes, local", size) << size << false;
        QTest::addRow("%d bytes, loopback", size) << size << true;
    }
}

void PumpTest::WhatASocketBringsIsInTheFile()
{
    QFETCH(int, size);
    QFETCH(bool, tcp);
    const QByteArray bytes = Pattern(static_cast<std::size_t>(size));
    const Descriptor file(TemporaryFile());
    if (tcp) {
        Pair pair(Loopback());
        ReceiveAll(pair, file, bytes);
    } else {
        Pair pair;
        ReceiveAll(pair, file, bytes);
    }
    QVERIFY(Contents(file) == bytes);
}

void PumpTest::AFileThatRefusesTheShortWayGetsEveryByte()
{
    const QByteArray bytes = Pattern(3'000'000);
    // The system does not splice into a file opened for appending.
    const Descriptor file(TemporaryFile(O_APPEND));
    Pair pair;
    ReceiveAll(pair, file, bytes);
    QVERIFY(Contents(file) == bytes);
}

void PumpTest::NothingThereIsNoEnd()
{
    Pair pair;
    const Descriptor file(TemporaryFile());
    SocketToFile pump(pair.Ours, file);
    const PumpResult result = pump.Move();
    QCOMPARE(result.End, PumpEnd::WouldBlock);
    QCOMPARE(result.Bytes, std::size_t{0});
    QCOMPARE(result.Error, 0);
}

void PumpTest::EveryMoveLeavesItsBytesInTheFile()
{
    Pair pair;
    const Descriptor file(TemporaryFile());
    SocketToFile pump(pair.Ours, file);
    QByteArray all;
    for (const QByteArray piece : {"one", "two", "three"}) {
        QCOMPARE(SendSome(pair.Theirs, piece, 0), piece.size());
        all += piece;
        const PumpResult result = pump.Move();
        QCOMPARE(result.End, PumpEnd::WouldBlock);
        QCOMPARE(result.Bytes, static_cast<std::size_t>(piece.size()));
        QCOMPARE(Contents(file), all);
    }
}

void PumpTest::BytesGoToTheFilesOwnPosition()
{
    Pair pair;
    const Descriptor file(TemporaryFile());
    QVERIFY(Fill(file, "abcdef"));
    ::lseek(file, 2, SEEK_SET);
    QCOMPARE(SendSome(pair.Theirs, "XY", 0), 2);
    SocketToFile pump(pair.Ours, file);
    QCOMPARE(pump.Move().Bytes, std::size_t{2});
    QCOMPARE(Contents(file), QByteArray("abXYef"));
    QCOMPARE(::lseek(file, 0, SEEK_CUR), off_t{4});
}

void PumpTest::AnEndlessSourceLeavesRoomForOthers()
{
    const Descriptor endless(::open("/dev/zero", O_RDONLY));
    const Descriptor nowhere(::open("/dev/null", O_WRONLY));
    SocketToFile receiving(endless, nowhere);
    PumpResult result = receiving.Move();
    QCOMPARE(result.End, PumpEnd::Moved);
    QVERIFY(result.Bytes >= MiB);
    QVERIFY(result.Bytes <= 8 * MiB);

    const Descriptor huge(TemporaryFile());
    QCOMPARE(::ftruncate(huge, off_t{1} << 33), 0);
    FileToSocket sending(huge, nowhere);
    result = sending.Move();
    QCOMPARE(result.End, PumpEnd::Moved);
    QVERIFY(result.Bytes >= MiB);
    QVERIFY(result.Bytes <= 8 * MiB);
}

void PumpTest::AFullDiskIsAnErrorOfTheTarget()
{
    Pair pair;
    const Descriptor full(::open("/dev/full", O_WRONLY));
    QVERIFY(full >= 0);
    QCOMPARE(SendSome(pair.Theirs, "hello", 0), 5);
    SocketToFile pump(pair.Ours, full);
    const PumpResult result = pump.Move();
    QCOMPARE(result.End, PumpEnd::TargetError);
    QCOMPARE(result.Error, ENOSPC);
    QCOMPARE(result.Bytes, std::size_t{0});
}

void PumpTest::AFileOverTheLimitOfItsSizeIsAnErrorOfTheTarget()
{
    constexpr std::size_t Limit = 100'000;
    rlimit before{};
    QVERIFY(::getrlimit(RLIMIT_FSIZE, &before) == 0);
    Pair pair;
    const Descriptor file(TemporaryFile());
    const QByteArray bytes = Pattern(150'000);
    QCOMPARE(SendSome(pair.Theirs, bytes, 0), bytes.size());
    ::shutdown(pair.Theirs, SHUT_WR);

    const rlimit limited{Limit, before.rlim_max};
    QVERIFY(::setrlimit(RLIMIT_FSIZE, &limited) == 0);
    SocketToFile pump(pair.Ours, file);
    std::size_t moved = 0;
    PumpResult result;
    do {
        result = pump.Move();
        moved += result.Bytes;
    } while (result.End == PumpEnd::Moved);
    ::setrlimit(RLIMIT_FSIZE, &before);

    QCOMPARE(result.End, PumpEnd::TargetError);
    QCOMPARE(result.Error, EFBIG);
    QCOMPARE(moved, Limit);
    QVERIFY(Contents(file) == bytes.left(Limit));
}

void PumpTest::AFileThatCannotBeWrittenIsAnErrorOfTheTarget()
{
    Pair pair;
    const Descriptor file(::open("/dev/null", O_RDONLY));
    QCOMPARE(SendSome(pair.Theirs, "hello", 0), 5);
    SocketToFile pump(pair.Ours, file);
    const PumpResult result = pump.Move();
    QCOMPARE(result.End, PumpEnd::TargetError);
    QCOMPARE(result.Error, EBADF);
}

void PumpTest::AConnectionResetIsAnErrorOfTheSource()
{
    Pair pair(Loopback());
    const Descriptor file(TemporaryFile());
    const linger atOnce{1, 0};
    ::setsockopt(pair.Theirs, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    pair.Theirs.Close();
    QVERIFY(WaitFor(pair.Ours, POLLIN));
    SocketToFile pump(pair.Ours, file);
    const PumpResult result = pump.Move();
    QCOMPARE(result.End, PumpEnd::SourceError);
    QCOMPARE(result.Error, ECONNRESET);
}

void PumpTest::AFileArrivesAtTheOtherSide_data()
{
    WhatASocketBringsIsInTheFile_data();
}

void PumpTest::AFileArrivesAtTheOtherSide()
{
    QFETCH(int, size);
    QFETCH(bool, tcp);
    const QByteArray bytes = Pattern(static_cast<std::size_t>(size));
    const Descriptor file(TemporaryFile());
    QVERIFY(Fill(file, bytes));
    if (tcp) {
        Pair pair(Loopback());
        QVERIFY(SendAll(pair, file) == bytes);
    } else {
        Pair pair;
        QVERIFY(SendAll(pair, file) == bytes);
    }
}

void PumpTest::AFileThatRefusesTheShortWayArrivesToo()
{
    // The system does not send such a file by itself.
    const Descriptor file(::open("/proc/self/cmdline", O_RDONLY));
    std::array<char, 4096> buffer{};
    const ssize_t size = ::pread(file, buffer.data(), buffer.size(), 0);
    QVERIFY(size > 0);
    Pair pair;
    QCOMPARE(SendAll(pair, file), QByteArray(buffer.data(), size));
}

void PumpTest::AFullSocketIsNoEnd()
{
    Pair pair;
    const QByteArray bytes = Pattern(8 * MiB);
    const Descriptor file(TemporaryFile());
    QVERIFY(Fill(file, bytes));
    FileToSocket pump(file, pair.Ours);
    PumpResult result;
    std::size_t moved = 0;
    do {
        result = pump.Move();
        moved += result.Bytes;
    } while (result.End == PumpEnd::Moved);
    QCOMPARE(result.End, PumpEnd::WouldBlock);
    QVERIFY(moved > 0);
    QVERIFY(moved < 8 * MiB);
    QCOMPARE(pump.Move().Bytes, std::size_t{0});
}

void PumpTest::AFileBeyondFourGiBIsSentFromItsOffset()
{
    constexpr off_t Offset = (off_t{1} << 32) + 12345;
    const QByteArray bytes = Pattern(100'000);
    const Descriptor file(TemporaryFile());
    // The beginning is a hole and takes no room.
    QCOMPARE(::pwrite(file, bytes.data(), static_cast<std::size_t>(bytes.size()), Offset), bytes.size());
    Pair pair;
    QVERIFY(SendAll(pair, file, Offset) == bytes);
}

void PumpTest::TheFilesOwnPositionIsNotMoved()
{
    const Descriptor file(TemporaryFile());
    QVERIFY(Fill(file, "abcdef"));
    ::lseek(file, 3, SEEK_SET);
    Pair pair;
    QCOMPARE(SendAll(pair, file), QByteArray("abcdef"));
    QCOMPARE(::lseek(file, 0, SEEK_CUR), off_t{3});
}

void PumpTest::AFileThatShrinksEndsEarly()
{
    const Descriptor file(TemporaryFile());
    QVERIFY(Fill(file, Pattern(8 * MiB)));
    Pair pair;
    FileToSocket pump(file, pair.Ours);
    PumpResult result = pump.Move();
    while (result.End == PumpEnd::Moved) result = pump.Move();
    QCOMPARE(result.End, PumpEnd::WouldBlock);
    QVERIFY(::ftruncate(file, 1000) == 0);
    QByteArray received;
    ReceiveSome(pair.Theirs, received);
    QCOMPARE(pump.Move().End, PumpEnd::End);
}

void PumpTest::ASocketClosedByTheOtherSideIsAnErrorOfTheTarget()
{
    const Descriptor file(TemporaryFile());
    QVERIFY(Fill(file, Pattern(MiB)));
    Pair pair;
    pair.Theirs.Close();
    FileToSocket pump(file, pair.Ours);
    const PumpResult result = pump.Move();
    QCOMPARE(result.End, PumpEnd::TargetError);
    QCOMPARE(result.Error, EPIPE);
}

void PumpTest::AFolderIsAnErrorOfTheSource()
{
    const Descriptor folder(::open("/tmp", O_RDONLY | O_DIRECTORY));
    Pair pair;
    FileToSocket pump(folder, pair.Ours);
    PumpResult result = pump.Move();
    while (result.End == PumpEnd::Moved) result = pump.Move();
    QCOMPARE(result.End, PumpEnd::SourceError);
    QCOMPARE(result.Error, EISDIR);
}

QTEST_GUILESS_MAIN(PumpTest)
#include "pump_test.moc"
