#include "support/loopback_server.h"
#include "support/started_program.h"

#include <QDir>
#include <QFile>
#include <QTest>

/// Where the finished program keeps what is its own when nobody has told it a folder: beside its executable, or with
/// the user's data where nothing can be made there.
class ProgramFolderTest : public QObject {
    Q_OBJECT

private slots:
    void WhatIsItsOwnStaysFromStartToStart_data();
    void WhatIsItsOwnStaysFromStartToStart();
};

namespace {

constexpr int Limit = 60'000;  // milliseconds; a busy machine is not a fault

QStringList NamesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

QByteArray Read(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

void ProgramFolderTest::WhatIsItsOwnStaysFromStartToStart_data()
{
    QTest::addColumn<bool>("locked");
    QTest::newRow("a folder that it may write into") << false;
    QTest::newRow("a folder that it may not write into") << true;
}

void ProgramFolderTest::WhatIsItsOwnStaysFromStartToStart()
{
    QFETCH(bool, locked);
    const QTemporaryDir place;
    StartedProgram program;
    program.PutInto(place.path());
    if (locked) program.LockFolder();
    const QStringList before = NamesIn(place.path());
    QCOMPARE(before.size(), 1);

    // Each start adds a site to the book.
    QList<QByteArray> addresses;
    for (int start = 0; start < 2; ++start) {
        LoopbackServer server;
        addresses += "ftp://127.0.0.1:" + QByteArray::number(server.Port());
        program.Start("type txtURL " + QString::fromLatin1(addresses.last()) +
                      "|click cmdConnect|rows lstRemoteFiles 2|choose mnuExit");
        QTRY_COMPARE_WITH_TIMEOUT(program.Process.state(), QProcess::NotRunning, Limit);
        QVERIFY(program.HasEnded());
        QVERIFY(server.Commands.contains("LIST") || server.Commands.contains("NLST"));
    }

    const QString own = locked ? program.UserFolder() : place.path();
    const QByteArray book = Read(own + "/Tolvane.dta");
    QCOMPARE(book.size(), 2 * 372);
    for (const QByteArray& address : addresses) QVERIFY2(book.contains(address), book.constData());
    QVERIFY(QFileInfo(own + "/Temp").isDir());
    if (locked)
        QCOMPARE(NamesIn(place.path()), before);
    else
        QVERIFY(!QFile::exists(program.UserFolder()));
    QCOMPARE(NamesIn(program.Home()).filter(".dta"), QStringList());
}

QTEST_GUILESS_MAIN(ProgramFolderTest)
#include "program_folder_test.moc"
