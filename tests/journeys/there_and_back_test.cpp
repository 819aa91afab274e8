#include "base/byte_text.h"
#include "support/real_program.h"
#include "support/real_servers.h"

#include <QDir>
#include <QRandomGenerator>
#include <filesystem>
#include <memory>

namespace {

QByteArray RandomBytes(qsizetype count, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(count, 0);
    for (char& byte : bytes) byte = static_cast<char>(random.bounded(256));
    return bytes;
}

void WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray BytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
}

}  // namespace

class ThereAndBackTest : public QObject {
    Q_OBJECT

private slots:
    void FilesGoBothWaysAndTheNextStartRemembers_data();
    void FilesGoBothWaysAndTheNextStartRemembers();

private:
    static void EnterAndLeave(const RealProgram& program);
    static void Receive(const RealProgram& program, const QMap<QString, QByteArray>& wanted, const QString& into);
    static void Send(const RealProgram& program, const QMap<QString, QByteArray>& files, const QString& onto);
};

void ThereAndBackTest::FilesGoBothWaysAndTheNextStartRemembers_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("unixListing");
    for (const auto kind : {RealServer::Pyftpdlib, RealServer::Vsftpd, RealServer::ProFtpd, RealServer::PureFtpd}) {
        const QByteArray name = RealServer::NameOf(kind).toUtf8();
        QTest::newRow((name + ", full lines").constData()) << static_cast<int>(kind) << false;
        QTest::newRow((name + ", names").constData()) << static_cast<int>(kind) << true;
    }
}

void ThereAndBackTest::EnterAndLeave(const RealProgram& program)
{
    ListMouse::DoubleClick(program.Remote(), RealProgram::RowOf(program.Remote(), "pub"));
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "plain.txt") >= 0, qPrintable(program.Status()),
                              15'000);
    program.Click("Command4");
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "pub") >= 0, qPrintable(program.Status()), 15'000);
    ListMouse::DoubleClick(program.Remote(), RealProgram::RowOf(program.Remote(), "pub"));
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "plain.txt") >= 0, qPrintable(program.Status()),
                              15'000);
}

void ThereAndBackTest::Receive(const RealProgram& program, const QMap<QString, QByteArray>& wanted, const QString& into)
{
    ListMouse::Select(program.Remote(), RealProgram::RowsOf(program.Remote(), wanted.keys()));
    ListMouse::RightDrag(program.Remote(), program.Files());
    QCOMPARE(program.Status(), QString("Waiting..."));
    for (const QString& name : wanted.keys()) QCOMPARE(BytesOf(into + '/' + name), wanted[name]);
    QCOMPARE(program.Files().Count(), static_cast<int>(wanted.size()));
}

void ThereAndBackTest::Send(const RealProgram& program, const QMap<QString, QByteArray>& files, const QString& onto)
{
    program.Click("Command4");
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "pub") >= 0, qPrintable(program.Status()), 15'000);
    ListMouse::Select(program.Files(), RealProgram::RowsOf(program.Files(), files.keys()));
    ListMouse::RightDrag(program.Files(), program.Remote());
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), files.lastKey()) >= 0, qPrintable(program.Status()),
                              15'000);
    for (const QString& name : files.keys()) {
        QCOMPARE(BytesOf(onto + '/' + name), files[name]);
        QVERIFY(RealProgram::RowOf(program.Remote(), name) >= 0);
    }
}

void ThereAndBackTest::FilesGoBothWaysAndTheNextStartRemembers()
{
    QFETCH(int, kind);
    QFETCH(bool, unixListing);
    const QMap<QString, QByteArray> there{
        {"plain.txt", "one\r\ntwo\nthree"},
        {"two words.bin", RandomBytes(300'000, 1)},
        {"empty", {}},
    };
    const QMap<QString, QByteArray> here{
        {"mine.txt", "mine\n"},
        {"my picture.jpg", RandomBytes(200'000, 2)},
        {QString::fromUtf8("grüße.dat"), RandomBytes(5, 3)},
    };
    const RealServer server(static_cast<RealServer::Kind>(kind));
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    QVERIFY(QDir(server.Folder()).mkdir("pub"));
    for (const QString& name : there.keys()) WriteFile(server.Folder() + "/pub/" + name, there[name]);

    RealProgram program;
    const QString incoming = program.Local.filePath("incoming");
    const QString outgoing = program.Local.filePath("outgoing");
    for (const QString& folder : {incoming, outgoing}) QVERIFY(QDir().mkdir(folder));
    for (const QString& name : here.keys()) WriteFile(outgoing + '/' + name, here[name]);

    program.Open();
    if (unixListing) program.Control<QAction>("mnuUNIX").trigger();
    program.Connect(server);
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "pub") >= 0, qPrintable(program.Status()), 15'000);
    EnterAndLeave(program);

    auto& folders = program.Control<ListBox>("Dir1");
    ListMouse::DoubleClick(folders, RealProgram::RowOf(folders, "incoming"));
    Receive(program, there, incoming);

    ListMouse::DoubleClick(folders, RealProgram::RowOf(folders, QDir(program.Local.path()).dirName()));
    ListMouse::DoubleClick(folders, RealProgram::RowOf(folders, "outgoing"));
    Send(program, here, server.Folder());

    program.Close();
    ChangeCurrentFolder("/");
    program.Open();
    QVERIFY(std::filesystem::equivalent(FilePath(CurrentFolder()), FilePath(outgoing)));
    QCOMPARE(program.Control<QComboBox>("txtURL").currentText(), server.Url());
    QCOMPARE(program.Control<QLineEdit>("txtUserName").text(), server.User());
    QCOMPARE(program.Control<QLineEdit>("txtPassword").text(), server.Password());
    QCOMPARE(program.Control<QAction>("mnuUNIX").isChecked(), unixListing);
    program.Click("cmdConnect");
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "mine.txt") >= 0, qPrintable(program.Status()),
                              15'000);
}

QTEST_MAIN(ThereAndBackTest)
#include "there_and_back_test.moc"
