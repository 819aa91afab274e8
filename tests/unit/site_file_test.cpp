#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "sites/site_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <filesystem>
#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

class SiteFileTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void AMissingFileIsAnEmptyBookAndIsCreated();
    void APartialRecordIsIgnored();
    void AnAppendedRecordReplacesAPartialOne();
    void BlankRecordsAreSkippedButCounted();
    void ASiteIsWrittenBehindTheLastRecord();
    void ASiteIsWrittenOverItsRecordAndNothingElseChanges();
    void ARecordBehindTheEndIsTheNextOne();
    void ErasingTheFirstOfThreeLeavesTwoNumberedFromOne();
    void ErasingRemovesBlankRecordsToo();
    void ErasingWithoutSuchARecordKeepsTheSites();
    void ErasingWithoutANumberIsRefused();
    void TheMarksOutliveARewrite();
    void AFullBookTakesNoMore();
    void ABookWithOneRecordTooManyIsNeitherReadNorWritten();
#ifndef Q_OS_WIN
    void OnlyTheOwnerMayReadTheBook_data();
    void OnlyTheOwnerMayReadTheBook();
#endif
    void AFailedLoadLeavesTheArraysAsTheyWere();
    void AFailedWriteLeavesTheBookAsItWas();
    void NothingIsLeftBesideTheBook();
    void WhatAKilledProgramLeftGoesWithTheNextChange();
    void RemovingTakesTheFileAway();
#ifndef Q_OS_WIN
    void AFolderWhoseNameIsNoUtf8HoldsABookToo();
    void ALinkToTheBookStaysALink();
    void APipeInTheBooksPlaceHoldsNobodyUp();
#endif

private:
    QString Name() const
    {
        return Folder->filePath("Tolvane.dta");
    }

    QByteArray Bytes() const
    {
        QFile file(Name());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    void Write(const QByteArray& bytes) const
    {
        QFile file(Name());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    SiteArrays Loaded() const
    {
        SiteArrays arrays;
        SiteFile(Name()).Load(arrays);
        return arrays;
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

namespace {

const Site Ann{"ftp://a", "ann", "1"};
const Site Bob{"ftp://b", "bob", "2"};
const Site Cid{"ftp://c", "cid", "3"};

template <typename Step>
QString Refusal(Step step)
{
    ErrorRecord errors;
    return errors.Attempt(step) ? QString() : errors.Description();
}

}  // namespace

void SiteFileTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
}

void SiteFileTest::AMissingFileIsAnEmptyBookAndIsCreated()
{
    const SiteArrays arrays = Loaded();
    QCOMPARE(arrays.RecordCount, 0);
    QCOMPARE(arrays.LoadedCount, 0);
    QCOMPARE(arrays.Urls, QStringList{""});
    QVERIFY(QFile::exists(Name()));
    QCOMPARE(QFileInfo(Name()).size(), 0);
}

void SiteFileTest::APartialRecordIsIgnored()
{
    Write(EncodeSite(1, Ann) + EncodeSite(2, Bob) + "x");
    QCOMPARE(QFileInfo(Name()).size(), 745);
    const SiteArrays arrays = Loaded();
    QCOMPARE(arrays.RecordCount, 2);
    QCOMPARE(arrays.LoadedCount, 2);
    QCOMPARE(arrays.Urls, (QStringList{"", "ftp://a", "ftp://b"}));
    QCOMPARE(arrays.Users, (QStringList{"", "ann", "bob"}));
    QCOMPARE(arrays.Passwords, (QStringList{"", "1", "2"}));
}

void SiteFileTest::AnAppendedRecordReplacesAPartialOne()
{
    Write(EncodeSite(1, Ann) + QByteArray(371, 'x'));
    SiteFile(Name()).Append(Bob);
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, Bob));
}

void SiteFileTest::BlankRecordsAreSkippedButCounted()
{
    Write(BlankSite() + EncodeSite(2, Bob) + BlankSite());
    const SiteArrays arrays = Loaded();
    QCOMPARE(arrays.RecordCount, 3);
    QCOMPARE(arrays.LoadedCount, 1);
    QCOMPARE(arrays.Urls, (QStringList{"", "ftp://b", "", ""}));
}

void SiteFileTest::ASiteIsWrittenBehindTheLastRecord()
{
    const SiteFile file(Name());
    file.Append(Ann);
    file.Append(Bob);
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, Bob));
}

void SiteFileTest::ASiteIsWrittenOverItsRecordAndNothingElseChanges()
{
    Write(EncodeSite(9, Ann) + EncodeSite(9, Bob) + EncodeSite(9, Cid) + "tail");
    SiteFile(Name()).Put(2, {"ftp://b", "new", "secret"});
    QCOMPARE(Bytes(), EncodeSite(9, Ann) + EncodeSite(2, {"ftp://b", "new", "secret"}) + EncodeSite(9, Cid) + "tail");
}

void SiteFileTest::ARecordBehindTheEndIsTheNextOne()
{
    Write(EncodeSite(1, Ann));
    SiteFile(Name()).Put(5, Bob);
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, Bob));
}

void SiteFileTest::ErasingTheFirstOfThreeLeavesTwoNumberedFromOne()
{
    Write(EncodeSite(1, Ann) + EncodeSite(2, Bob) + EncodeSite(3, Cid));
    SiteFile(Name()).Erase(1);
    QCOMPARE(Bytes(), EncodeSite(1, Bob) + EncodeSite(2, Cid));
}

void SiteFileTest::ErasingRemovesBlankRecordsToo()
{
    Write(BlankSite() + EncodeSite(2, Ann) + BlankSite() + EncodeSite(4, Bob));
    SiteFile(Name()).Erase(2);
    QCOMPARE(Bytes(), EncodeSite(1, Bob));
}

void SiteFileTest::ErasingWithoutSuchARecordKeepsTheSites()
{
    Write(EncodeSite(1, Ann) + EncodeSite(2, Bob));
    SiteFile(Name()).Erase(7);
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, Bob));
}

void SiteFileTest::ErasingWithoutANumberIsRefused()
{
    Write(BlankSite() + EncodeSite(2, Ann));
    QCOMPARE(Refusal([&] { SiteFile(Name()).Erase(0); }), QString("Bad record number"));
    QCOMPARE(Bytes(), BlankSite() + EncodeSite(2, Ann));
}

void SiteFileTest::TheMarksOutliveARewrite()
{
    Write(EncodeSite(1, Ann) + EncodeSite(2, {"ftp://b", EmptyUserMark, EmptyPasswordMark}));
    SiteFile(Name()).Erase(1);
    QCOMPARE(Bytes(), EncodeSite(1, {"ftp://b", EmptyUserMark, EmptyPasswordMark}));
}

void SiteFileTest::AFullBookTakesNoMore()
{
    QByteArray full;
    for (int number = 1; number <= 32767; ++number) full += EncodeSite(static_cast<std::int16_t>(number), Ann);
    Write(full);
    const SiteFile file(Name());
    const SiteArrays arrays = Loaded();
    QCOMPARE(arrays.RecordCount, 32767);
    QCOMPARE(arrays.LoadedCount, 32767);
    QCOMPARE(arrays.Urls.last(), QString("ftp://a"));
    QCOMPARE(Refusal([&] { file.Append(Bob); }), QString("Overflow"));
    QCOMPARE(Refusal([&] { file.Put(32768, Bob); }), QString("Overflow"));
    QVERIFY(Bytes() == full);

    file.Put(32767, Bob);
    QVERIFY(Bytes() == full.left(qsizetype{32766} * 372) + EncodeSite(32767, Bob));
}

void SiteFileTest::ABookWithOneRecordTooManyIsNeitherReadNorWritten()
{
    const QByteArray over = EncodeSite(1, Ann).repeated(32768);
    Write(over);
    const SiteFile file(Name());
    SiteArrays arrays;
    QCOMPARE(Refusal([&] { file.Load(arrays); }), QString("Overflow"));
    QCOMPARE(arrays.RecordCount, 0);
    QVERIFY(arrays.Urls.isEmpty());
    QCOMPARE(Refusal([&] { file.Append(Bob); }), QString("Overflow"));
    QCOMPARE(Refusal([&] { file.Erase(1); }), QString("Overflow"));
    QVERIFY(Bytes() == over);
}

#ifndef Q_OS_WIN
void SiteFileTest::OnlyTheOwnerMayReadTheBook_data()
{
    QTest::addColumn<bool>("there");
    QTest::newRow("created") << false;
    QTest::newRow("found open to all") << true;
}

void SiteFileTest::OnlyTheOwnerMayReadTheBook()
{
    QFETCH(bool, there);
    constexpr auto Others =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    if (there) {
        Write(EncodeSite(1, Ann));
        QVERIFY(
            QFile::setPermissions(Name(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
    }
    Loaded();
    QCOMPARE(QFileInfo(Name()).permissions() & Others, QFile::Permissions());
    SiteFile(Name()).Append(Bob);
    QCOMPARE(QFileInfo(Name()).permissions() & Others, QFile::Permissions());
    SiteFile(Name()).Erase(1);
    QCOMPARE(QFileInfo(Name()).permissions() & Others, QFile::Permissions());
}
#endif

void SiteFileTest::AFailedLoadLeavesTheArraysAsTheyWere()
{
    Write(EncodeSite(1, Ann));
    SiteArrays arrays = Loaded();
    QVERIFY(QFile::remove(Name()));
    QVERIFY(QDir().mkdir(Name()));
    QVERIFY(!Refusal([&] { SiteFile(Name()).Load(arrays); }).isEmpty());
    QCOMPARE(arrays.RecordCount, 1);
    QCOMPARE(arrays.Urls, (QStringList{"", "ftp://a"}));
}

// A folder without room is in the way of every write: here the device that is always full.
void SiteFileTest::AFailedWriteLeavesTheBookAsItWas()
{
    QVERIFY(!Refusal([&] { SiteFile(Folder->filePath("no/such/folder.dta")).Append(Ann); }).isEmpty());
    QVERIFY(!Refusal([&] { SiteFile("/dev/full").Append(Ann); }).isEmpty());
    QVERIFY(!Refusal([&] { SiteFile("").Append(Ann); }).isEmpty());
}

void SiteFileTest::NothingIsLeftBesideTheBook()
{
    const SiteFile file(Name());
    file.Append(Ann);
    file.Append(Bob);
    file.Erase(1);
    QCOMPARE(QDir(Folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"Tolvane.dta"});
}

void SiteFileTest::WhatAKilledProgramLeftGoesWithTheNextChange()
{
    for (const char* name : {"Tolvane.dta.AbC123", "Tolvane.dta.young1", "Tolvane.dta.backup2"}) {
        QFile left(Folder->filePath(name));
        QVERIFY(left.open(QIODevice::WriteOnly));
        if (qstrcmp(name, "Tolvane.dta.young1") == 0) continue;
        QVERIFY(left.setFileTime(QDateTime::currentDateTime().addSecs(-3600), QFile::FileModificationTime));
    }
    SiteFile(Name()).Append(Ann);
    QCOMPARE(QDir(Folder->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
             (QStringList{"Tolvane.dta", "Tolvane.dta.backup2", "Tolvane.dta.young1"}));
}

void SiteFileTest::RemovingTakesTheFileAway()
{
    const SiteFile file(Name());
    file.Append(Ann);
    file.Remove();
    QVERIFY(!QFile::exists(Name()));
    QCOMPARE(Refusal([&] { file.Remove(); }), QString("File not found"));
}

#ifndef Q_OS_WIN
void SiteFileTest::AFolderWhoseNameIsNoUtf8HoldsABookToo()
{
    const QString folder = Folder->filePath(BytesToText("caf\xE9"));
    QVERIFY(std::filesystem::create_directory(FilePath(folder)));
    const SiteFile file(folder + "/Tolvane.dta");
    SiteArrays arrays;
    file.Load(arrays);
    file.Append(Ann);
    file.Load(arrays);
    QCOMPARE(arrays.Urls, (QStringList{"", "ftp://a"}));
    file.Remove();
    QVERIFY(std::filesystem::remove(FilePath(folder)));  // so nothing else is in it
}

void SiteFileTest::ALinkToTheBookStaysALink()
{
    QVERIFY(QFile(Name()).open(QIODevice::WriteOnly));
    const QString link = Folder->filePath("link.dta");
    QVERIFY(QFile::link(Name(), link));
    SiteFile(link).Append(Ann);
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(Bytes(), EncodeSite(1, Ann));
}

void SiteFileTest::APipeInTheBooksPlaceHoldsNobodyUp()
{
    QCOMPARE(mkfifo(Name().toLocal8Bit().constData(), 0600), 0);
    SiteArrays arrays;
    QCOMPARE(Refusal([&] { SiteFile(Name()).Load(arrays); }), QString("Path/File access error"));
}
#endif

QTEST_GUILESS_MAIN(SiteFileTest)

#include "site_file_test.moc"
