#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

/// One record of the site book's file, byte for byte. Pure; any thread.
///
///   offset  size  field
///        0     2  slot number, signed, little-endian: the record's own number from 1 on, 0 in an erased record
///        2   270  address
///      272    45  user ID
///      317    55  password, as typed
///
/// The texts stand in the Windows-1252 page, at the left of their fields, padded with blanks.

/// One site of the book. A user ID or password of "$" stands for the empty one, which is never stored as blanks.
struct Site {
    QString Address;
    QString User;
    QString Password;

    bool operator==(const Site&) const = default;
};

constexpr qsizetype SiteRecordSize = 372;
constexpr qsizetype SiteAddressWidth = 270;
constexpr qsizetype SiteUserWidth = 45;
constexpr qsizetype SitePasswordWidth = 55;

constexpr auto EmptyUserMark = "$";
constexpr auto EmptyPasswordMark = "$ ";

/// The record of a site, always SiteRecordSize bytes; longer texts are cut at the width of their field.
QByteArray EncodeSite(std::int16_t slot, const Site& site);

/// An erased record: slot number 0 and blank fields.
QByteArray BlankSite();

/// The texts of a record of SiteRecordSize bytes, without the blanks at both ends.
Site DecodeSite(const QByteArray& record);

/// The record's slot number.
std::int16_t SlotOf(const QByteArray& record);

/// A text in the Windows-1252 page: one byte a character, "?" for what the page does not have.
QByteArray AnsiBytes(const QString& text);

/// The text of such bytes. The five bytes that the page leaves undefined (81, 8D, 8F, 90 and 9D) become the control
/// characters of the same number, so that every byte comes back as it was.
QString AnsiText(const QByteArray& bytes);
