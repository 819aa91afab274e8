// Receives one large file on the first channel and another on the second, at the same time, in the whole program.
//
//   two_channels [GiB]      3 each when nothing is said
//
// Tells the seconds, the peak of the memory in use beside that before the transfers, and the longest pause of the event
// loop: while it lasts the window answers nobody. Compares every byte.

#include "support/real_program.h"
#include "support/real_servers.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr qint64 Mebi = 1 << 20;
constexpr int Limit = 3'600'000;  // milliseconds

QString PeakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return QString::fromStdString(line.substr(6)).simplified();
    return "unknown";
}

/// Different in every MiB, and in every file.
QByteArray Piece(qint64 number, char seed)
{
    QByteArray piece(Mebi, seed);
    for (int at = 0; at < 64; ++at) piece[at * 16'000] = static_cast<char>(number >> (at % 4 * 8));
    return piece;
}

void Make(const QString& path, qint64 pieces, char seed)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) qFatal("Cannot write %s", qPrintable(path));
    for (qint64 number = 0; number < pieces; ++number)
        if (file.write(Piece(number, seed)) != Mebi) qFatal("Cannot write %s", qPrintable(path));
}

void Check(const QString& path, qint64 pieces, char seed)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("%s is not there", qPrintable(path));
    for (qint64 number = 0; number < pieces; ++number)
        if (file.read(Mebi) != Piece(number, seed)) qFatal("%s differs in MiB %lld", qPrintable(path), number);
    if (!file.atEnd()) qFatal("%s is too long", qPrintable(path));
}

/// Looks at the time in every pass of the event loop.
class Heartbeat : public QObject {
public:
    Heartbeat()
    {
        Clock.start();
        Beat.setTimerType(Qt::PreciseTimer);
        connect(&Beat, &QTimer::timeout, this, [this] {
            Longest = std::max(Longest, Clock.restart());
            ++Beats;
        });
        Beat.start(1);
    }

    qint64 Longest = 0;
    qint64 Beats = 0;

private:
    QTimer Beat;
    QElapsedTimer Clock;
};

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const auto pieces = static_cast<qint64>((argc > 1 ? std::stod(argv[1]) : 3.0) * 1024);
    const RealServer server(RealServer::Vsftpd);
    if (!server.Complaint().isEmpty()) qFatal("%s", qPrintable(server.Complaint()));
    Make(server.Folder() + "/first.bin", pieces, 'a');
    Make(server.Folder() + "/second.bin", pieces, 'b');

    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    program.Control<QAction>("mnuUNIX").trigger();
    program.Connect(server);
    if (!QTest::qWaitFor([&] { return RealProgram::RowOf(program.Remote(), "first.bin") >= 0; }, Limit))
        qFatal("No listing: %s", qPrintable(program.Status()));
    const QString before = PeakMemory();

    const QString login = "ftp://" + server.User() + ':' + server.Password() + '@';
    program.Control<QComboBox>("txtCom").setEditText(server.Url().replace("ftp://", login) + "/second.bin");
    ListMouse::Select(program.Remote(), RealProgram::RowsOf(program.Remote(), {"first.bin"}));
    const auto& said = program.Control<QLabel>("sbFTP2");
    Heartbeat pulse;
    QElapsedTimer watch;
    watch.start();
    double second = 0;
    program.Click("Command14");
    QTimer::singleShot(0, program.Window.get(), [&] { program.Click("Image2"); });
    const bool done = QTest::qWaitFor(
        [&] {
            if (second == 0 && said.text() == "Waiting...") second = static_cast<double>(watch.elapsed()) / 1000;
            return second != 0 && program.IsIdle() && QFile::exists(program.Local.filePath("first.bin"));
        },
        Limit);
    const double both = static_cast<double>(watch.elapsed()) / 1000;
    if (!done) qFatal("%s / %s", qPrintable(program.Status()), qPrintable(said.text()));
    std::printf("MiB on each channel %lld\nseconds, both %.1f\nseconds, second channel %.1f\n", pieces, both, second);
    std::printf("peak memory before %s\npeak memory %s\n", qPrintable(before), qPrintable(PeakMemory()));
    std::printf("longest pause of the event loop %lld ms in %lld passes\n", pulse.Longest, pulse.Beats);
    Check(program.Local.filePath("first.bin"), pieces, 'a');
    Check(program.Local.filePath("second.bin"), pieces, 'b');
    program.Close();
    return 0;
}
