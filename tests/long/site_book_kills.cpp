// Kills the program while it changes its site book, again and again, and looks at the book that it leaves.
//
//   site_book_kills [kills]      500 when nothing is said
//
// The program is started anew for each kill: the whole main window, with everything behind it but the network. It
// connects, replaces and erases without a rest, as the buttons would, and says before and after each change what it
// does. Whatever the moment of the kill, the book must be the one before the last change that was begun, or the one
// after it, byte for byte; the next start goes on from there.

#include "sites/site_record.h"
#include "support/window_fixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QRandomGenerator>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr int UsualKills = 500;
constexpr int LongestLifeInMilliseconds = 120;  // of the program once it is at work
constexpr int StartLimit = 60'000;

using Book = QList<Site>;

/// The book after one more change; the number of the change decides which.
Book Changed(Book book, int number)
{
    const QString address = QString("ftp://host%1.example").arg(number % 37);
    const Site site{address, QString("user%1").arg(number), QString("password %1").arg(number)};
    for (Site& known : book) {
        if (known.Address != address) continue;
        known = site;
        return book;
    }
    book.append(site);
    return book;
}

QByteArray Bytes(const Book& book)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < book.size(); ++at) bytes += EncodeSite(static_cast<std::int16_t>(at + 1), book[at]);
    return bytes;
}

Book Parsed(const QByteArray& bytes)
{
    Book book;
    for (qsizetype at = 0; at + SiteRecordSize <= bytes.size(); at += SiteRecordSize)
        book.append(DecodeSite(bytes.mid(at, SiteRecordSize)));
    return book;
}

QByteArray ReadBook(const QString& folder)
{
    QFile file(folder + "/Tolvane.dta");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Tells the parent in one step that cannot be lost with the process.
void Say(char what, int number)
{
    const QByteArray line = what + QByteArray::number(number) + '\n';
    if (write(STDOUT_FILENO, line.constData(), static_cast<std::size_t>(line.size())) != line.size()) _exit(2);
}

/// The program at work, until it is killed: it connects with "+" pressed.
[[noreturn]] void Work(const QString& folder, int number)
{
    WindowFixture program(folder);
    program.Open();
    auto& url = program.Control<QComboBox>("txtURL");
    program.Questions.Reply = [](const Question&) { return Answer::Yes; };
    Say('r', number);
    for (;; ++number) {
        const Site site = Changed({}, number).first();
        url.setEditText(site.Address);
        program.Control<QLineEdit>("txtUserName").setText(site.User);
        program.Control<QLineEdit>("txtPassword").setText(site.Password);
        program.Control<QAbstractButton>("Command17").click();
        Say('b', number);
        program.Control<QAbstractButton>("cmdConnect").click();
        Say('e', number);
        QCoreApplication::processEvents();
    }
}

struct Life {
    int Begun = -1;  ///< the last change that was begun; -1 when none was
    int Ended = -1;  ///< the last one that was done
    bool AtWork = false;
};

Life LiveAndDie(const QString& folder, int number, int milliseconds)
{
    QProcess program;
    // What the killed program can no longer remove goes with this.
    const QTemporaryDir scratch;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", scratch.path());
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QCoreApplication::applicationFilePath(), {"--work", folder, QString::number(number)});
    QByteArray said;
    while (!said.contains('r') && program.waitForReadyRead(StartLimit)) said += program.readAllStandardOutput();
    Life life;
    life.AtWork = said.contains('r');
    program.waitForFinished(milliseconds);
    program.kill();
    program.waitForFinished();
    said += program.readAllStandardOutput();
    for (const QByteArray& line : said.split('\n')) {
        if (line.startsWith('b')) life.Begun = line.mid(1).toInt();
        if (line.startsWith('e')) life.Ended = line.mid(1).toInt();
    }
    return life;
}

int Fail(int kill, const char* reason)
{
    std::fprintf(stderr, "kill %d: %s\n", kill, reason);
    return 1;
}

int KillAgainAndAgain(int kills)
{
    const QTemporaryDir folder;
    Book book;
    int number = 0;
    int midst = 0;
    int oldBooks = 0;
    int changes = 0;
    QElapsedTimer taken;
    taken.start();
    for (int kill = 1; kill <= kills; ++kill) {
        const int rest = QRandomGenerator::global()->bounded(LongestLifeInMilliseconds);
        const Life life = LiveAndDie(folder.path(), number, rest);
        if (!life.AtWork) return Fail(kill, "the program did not start");
        for (; number <= life.Ended; ++number, ++changes) book = Changed(book, number);
        const QByteArray found = ReadBook(folder.path());
        if (life.Begun > life.Ended) {
            ++midst;
            const Book next = Changed(book, number);
            if (found == Bytes(book) && found != Bytes(next)) ++oldBooks;
            if (found != Bytes(book) && found != Bytes(next)) return Fail(kill, "the book is neither old nor new");
        } else if (found != Bytes(book)) {
            return Fail(kill, "the book is not the one that was written");
        }
        book = Parsed(found);
        number = std::max(life.Begun, number - 1) + 1;
    }
    std::printf("%d kills, %d of them in the midst of a change (%d left the old book, %d the new one); "
                "%d changes before; %lld s; the book holds %lld sites\n",
                kills, midst, oldBooks, midst - oldBooks, changes, taken.elapsed() / 1000,
                static_cast<long long>(book.size()));
    return 0;
}

}  // namespace

int main(int count, char** words)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication program(count, words);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--work") Work(arguments.value(2), arguments.value(3).toInt());
    return KillAgainAndAgain(count > 1 ? arguments[1].toInt() : UsualKills);
}
