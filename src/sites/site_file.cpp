#include "sites/site_file.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "sites/owned_file.h"

#include <QFile>
#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

std::int16_t CountRecords(const QFile& file)
{
    const qint64 count = file.size() / SiteRecordSize;
    if (count > SiteFile::MaxRecords) throw RuntimeError("Overflow");
    return static_cast<std::int16_t>(count);
}

std::int16_t Slot(qsizetype number)
{
    if (number > SiteFile::MaxRecords) throw RuntimeError("Overflow");
    return static_cast<std::int16_t>(number);
}

QByteArray ReadRecord(QFile& file)
{
    QByteArray record = file.read(SiteRecordSize);
    if (record.size() != SiteRecordSize) throw RuntimeError("Device I/O error");
    return record;
}

}  // namespace

void SiteFile::Load(SiteArrays& arrays) const
{
    QFile file;
    OpenOwnedFile(file, Name);
    arrays.RecordCount = CountRecords(file);
    arrays.LoadedCount = 0;
    for (QStringList* list : {&arrays.Urls, &arrays.Users, &arrays.Passwords})
        *list = QStringList(arrays.RecordCount + 1);

    for (int number = 1; number <= arrays.RecordCount; ++number) {
        const Site site = DecodeSite(ReadRecord(file));
        if (site.Address.isEmpty()) continue;
        const int position = ++arrays.LoadedCount;
        arrays.Urls[position] = site.Address;
        arrays.Users[position] = site.User;
        arrays.Passwords[position] = site.Password;
    }
}

void SiteFile::Put(int record, const Site& site) const
{
    QByteArray book = Read();
    if (record < 1) throw RuntimeError("Bad record number");
    const qsizetype target = std::min<qsizetype>(record, book.size() / SiteRecordSize + 1);
    book.replace((target - 1) * SiteRecordSize, SiteRecordSize, EncodeSite(Slot(target), site));
    Write(book);
}

void SiteFile::Append(const Site& site) const
{
    Put(MaxRecords + 1, site);
}

void SiteFile::Erase(int record) const
{
    const QByteArray book = Read();
    if (record < 1) throw RuntimeError("Bad record number");
    QByteArray rest;
    rest.reserve(book.size());
    for (qsizetype number = 1; number <= book.size() / SiteRecordSize; ++number) {
        const Site site = DecodeSite(book.mid((number - 1) * SiteRecordSize, SiteRecordSize));
        if (number == record || site.Address.isEmpty()) continue;
        rest += EncodeSite(Slot(rest.size() / SiteRecordSize + 1), site);
    }
    Write(rest);
}

void SiteFile::Remove() const
{
    RemoveLeftOvers(Name);
    std::error_code failure;
    if (!std::filesystem::remove(FilePath(Name), failure)) throw RuntimeError("File not found");
}

QByteArray SiteFile::Read() const
{
    QFile file;
    OpenOwnedFile(file, Name);
    CountRecords(file);
    const qint64 size = file.size();
    QByteArray book = file.read(size);
    if (book.size() != size) throw RuntimeError("Device I/O error");
    return book;
}

void SiteFile::Write(const QByteArray& book) const
{
    RemoveLeftOvers(Name);
    ReplaceOwnedFile(Name, book);
}
