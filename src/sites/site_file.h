#pragma once

#include "sites/site_record.h"

#include <QString>
#include <QStringList>
#include <cstdint>

/// The book in memory. The lists have the entries 0 to RecordCount; 1 to LoadedCount hold the sites in the order of
/// the file, the others are empty.
struct SiteArrays {
    QStringList Urls;
    QStringList Users;
    QStringList Passwords;
    std::int16_t RecordCount = 0;  ///< records of the file at the last load, erased ones included
    std::int16_t LoadedCount = 0;  ///< sites among them
};

/// The file of the site book: fixed records, no header, up to 32,767 of them; what follows the last whole record is
/// ignored. It is opened and closed within each call. A change is written to a file beside it and put in its place in
/// one step, so whatever happens the old book is there or the new one. Where the system has such rights only the
/// owner may read it. Every call throws RuntimeError when the system refuses, "Overflow" for a book that has too many
/// records; a change that fails leaves the book as it was. Any thread.
class SiteFile {
public:
    static constexpr int MaxRecords = 32767;

    explicit SiteFile(QString name) : Name(std::move(name)) {}

    /// Fills the arrays from the file, which is created empty when it is missing. Where the file ends the load early,
    /// the arrays stay as far as they got: as they were when the records cannot even be counted.
    void Load(SiteArrays& arrays) const;

    /// Writes a site over the given record (from 1 on), or behind the last one when the file has no such record.
    void Put(int record, const Site& site) const;

    /// Writes a site behind the last record.
    void Append(const Site& site) const;

    /// Erases one record (from 1 on) and those that were blank already; the rest is numbered anew. Without a record
    /// of that number only the blank ones go. "Bad record number" when it is below 1.
    void Erase(int record) const;

    /// Removes the file.
    void Remove() const;

private:
    QByteArray Read() const;
    void Write(const QByteArray& book) const;

    QString Name;
};
