#include "session/download_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#ifndef Q_OS_WIN
#include <csignal>
#include <sys/resource.h>
#endif

/// How a download takes the place of its target.
class DownloadFileTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void ItIsWrittenOverTheOldFileFromItsFirstByteOn_data();
    void ItIsWrittenOverTheOldFileFromItsFirstByteOn();
    void ATailOfSeveralPiecesIsKept();
    void TheOldFilesPermissionsAreKept();
    void AFolderInTheWayIsNotTouched();
    void PathsMayBeLong();
#ifndef Q_OS_WIN
    void ADiskThatIsFullLeavesTheOldFile();
#endif
    void WhoIsToldToStopLeavesTheOldFile();
    void TwoHiddenFilesNeverShareAName();
    void TakingOverGivesAnotherName();
    void NamesThatCanBeFiles_data();
    void NamesThatCanBeFiles();

private:
    QString Path(const QString& name) const
    {
        return Folder->filePath(name);
    }

    void Put(const QString& name, const QByteArray& bytes) const;
    QByteArray Content(const QString& name) const;
    QStringList Names() const;

    std::unique_ptr<QTemporaryDir> Folder;
    std::atomic<bool> Stop = false;
};

void DownloadFileTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Stop = false;
}

void DownloadFileTest::Put(const QString& name, const QByteArray& bytes) const
{
    QFile file(Path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray DownloadFileTest::Content(const QString& name) const
{
    QFile file(Path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(absent)");
}

QStringList DownloadFileTest::Names() const
{
    return QDir(Folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void DownloadFileTest::ItIsWrittenOverTheOldFileFromItsFirstByteOn_data()
{
    QTest::addColumn<QByteArray>("old");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("result");
    QTest::newRow("no old file") << QByteArray() << QByteArray("abc") << QByteArray("abc");
    QTest::newRow("a shorter one") << QByteArray("0") << QByteArray("abc") << QByteArray("abc");
    QTest::newRow("one as long") << QByteArray("012") << QByteArray("abc") << QByteArray("abc");
    QTest::newRow("a longer one") << QByteArray("01234") << QByteArray("abc") << QByteArray("abc34");
    QTest::newRow("nothing over something") << QByteArray("012") << QByteArray() << QByteArray("012");
}

void DownloadFileTest::ItIsWrittenOverTheOldFileFromItsFirstByteOn()
{
    QFETCH(const QByteArray, old);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QByteArray, result);
    if (!old.isEmpty()) Put("file", old);
    Put(".hidden", bytes);
    QCOMPARE(LayOver(Path(".hidden"), Path("file"), Stop), QString());
    QCOMPARE(Content("file"), result);
    QCOMPARE(Names(), QStringList{"file"});
}

void DownloadFileTest::ATailOfSeveralPiecesIsKept()
{
    QByteArray old(5'000'000, '\0');
    for (qsizetype at = 0; at < old.size(); ++at) old[at] = static_cast<char>(at % 251);
    Put("file", old);
    Put(".hidden", QByteArray(1'000'001, 'x'));
    QCOMPARE(LayOver(Path(".hidden"), Path("file"), Stop), QString());
    QVERIFY(Content("file") == QByteArray(1'000'001, 'x') + old.mid(1'000'001));
}

void DownloadFileTest::TheOldFilesPermissionsAreKept()
{
    Put("file", "01234");
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(Path("file"), permissions));
    const auto before = QFile::permissions(Path("file"));
    Put(".hidden", "abc");
    QCOMPARE(LayOver(Path(".hidden"), Path("file"), Stop), QString());
    QCOMPARE(QFile::permissions(Path("file")), before);
}

void DownloadFileTest::AFolderInTheWayIsNotTouched()
{
    QVERIFY(QDir(Folder->path()).mkdir("file"));
    Put(".hidden", "abc");
    QCOMPARE(LayOver(Path(".hidden"), Path("file"), Stop),
             QString("The file %1 cannot be written: something else has this name.").arg(Path("file")));
    QCOMPARE(Names(), QStringList{"file"});
    QVERIFY(QFileInfo(Path("file")).isDir());
}

void DownloadFileTest::PathsMayBeLong()
{
    const QString inner = QString(100, u'f') + '/' + QString(100, u'g');
    QVERIFY(QDir(Folder->path()).mkpath(inner));
    const QString name = inner + '/' + QString(60, u'n');
    QVERIFY(Path(name).size() > 260);
    const QString hidden = HiddenFile(Path(inner));
    Put(name, "01234");
    Put(hidden.mid(Folder->path().size() + 1), "abc");
    const QString own = TakeOver(hidden);
    QVERIFY(!own.isEmpty());
    QCOMPARE(LayOver(own, Path(name), Stop), QString());
    QCOMPARE(Content(name), QByteArray("abc34"));
    const auto names = [&] {
        return QDir(Path(inner)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    QCOMPARE(names(), QStringList(QString(60, u'n')));

    const QString folder = inner + '/' + QString(61, u'd');
    QVERIFY(QDir(Folder->path()).mkpath(folder));
    Put(inner + "/.hidden", "abc");
    QVERIFY(LayOver(Path(inner + "/.hidden"), Path(folder), Stop).contains("something else has this name"));
    QCOMPARE(names(), (QStringList{QString(61, u'd'), QString(60, u'n')}));
}

#ifndef Q_OS_WIN

// A limit for the size of files does what a full disk does: writing fails in the midst.
void DownloadFileTest::ADiskThatIsFullLeavesTheOldFile()
{
    const QByteArray old(3'000'000, 'o');
    Put("file", old);
    Put(".hidden", QByteArray(1000, 'x'));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{2'000'000, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const QString complaint = LayOver(Path(".hidden"), Path("file"), Stop);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY2(complaint.startsWith("The file " + Path("file") + " cannot be written: "), qPrintable(complaint));
    QVERIFY(Content("file") == old);
    QCOMPARE(Names(), QStringList{"file"});
}

#endif

void DownloadFileTest::WhoIsToldToStopLeavesTheOldFile()
{
    Put("file", "01234");
    Put(".hidden", "abc");
    Stop = true;
    QVERIFY(!LayOver(Path(".hidden"), Path("file"), Stop).isEmpty());
    QCOMPARE(Content("file"), QByteArray("01234"));
    QCOMPARE(Names(), QStringList{"file"});
}

void DownloadFileTest::TwoHiddenFilesNeverShareAName()
{
    const QString one = HiddenFile(Folder->path());
    QVERIFY(one.startsWith(Folder->path() + "/."));
    QVERIFY(one != HiddenFile(Folder->path()));
    QCOMPARE(Names(), QStringList());
}

void DownloadFileTest::TakingOverGivesAnotherName()
{
    const QString hidden = HiddenFile(Folder->path());
    QCOMPARE(TakeOver(hidden), QString());
    Put(QFileInfo(hidden).fileName(), "abc");
    const QString own = TakeOver(hidden);
    QVERIFY(!own.isEmpty() && own != hidden);
    QCOMPARE(Names(), QStringList{QFileInfo(own).fileName()});
    Discard(own);
    Discard(own);
    QCOMPARE(Names(), QStringList());
}

void DownloadFileTest::NamesThatCanBeFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("can");
    QTest::newRow("usual") << "manual.zip" << true;
    QTest::newRow("blanks and percent signs") << "read%20me first.txt" << true;
    QTest::newRow("hidden") << ".profile" << true;
    QTest::newRow("nothing") << "" << false;
    QTest::newRow("the folder itself") << "." << false;
    QTest::newRow("the folder above") << ".." << false;
    QTest::newRow("a path") << "a/b" << false;
    QTest::newRow("a control character") << "a\nb" << false;
    QTest::newRow("a NUL") << QString("a") + QChar(0) + "b" << false;
    QTest::newRow("a delete character") << "a\x7F" << false;
#ifdef Q_OS_WIN
    constexpr bool HereToo = false;
#else
    constexpr bool HereToo = true;
#endif
    QTest::newRow("a device of Windows") << "COM1.txt" << HereToo;
    QTest::newRow("a device of Windows that is seldom meant") << "conin$" << HereToo;
    QTest::newRow("a stream of another file") << "a.txt:b" << HereToo;
    QTest::newRow("a dot at the end") << "a.txt." << HereToo;
}

void DownloadFileTest::NamesThatCanBeFiles()
{
    QFETCH(const QString, name);
    QFETCH(const bool, can);
    QCOMPARE(IsFileName(name), can);
}

QTEST_GUILESS_MAIN(DownloadFileTest)
#include "download_file_test.moc"
