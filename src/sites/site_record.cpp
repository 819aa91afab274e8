#include "sites/site_record.h"

#include "base/conversions.h"

#include <QtEndian>
#include <algorithm>
#include <array>

namespace {

constexpr qsizetype AddressAt = 2;
constexpr qsizetype UserAt = AddressAt + SiteAddressWidth;
constexpr qsizetype PasswordAt = UserAt + SiteUserWidth;
static_assert(PasswordAt + SitePasswordWidth == SiteRecordSize);

/// What the bytes 80 to 9F mean; the others mean the character of the same number.
constexpr unsigned FirstSpecial = 0x80;
constexpr std::array<char16_t, 32> Special{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char AnsiByte(char16_t unit)
{
    if (unit < FirstSpecial || (unit >= FirstSpecial + Special.size() && unit <= 0xFF)) return static_cast<char>(unit);
    const auto* found = std::find(Special.begin(), Special.end(), unit);
    return found == Special.end() ? '?' : static_cast<char>(FirstSpecial + (found - Special.begin()));
}

QByteArray Field(const QString& text, qsizetype width)
{
    return AnsiBytes(text).leftJustified(width, ' ', true);
}

QString FieldText(const QByteArray& record, qsizetype at, qsizetype width)
{
    return Trimmed(AnsiText(record.mid(at, width)));
}

}  // namespace

QByteArray AnsiBytes(const QString& text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype at = 0; at < text.size(); ++at) {
        bytes += AnsiByte(text[at].unicode());
        if (text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate()) ++at;
    }
    return bytes;
}

QString AnsiText(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const unsigned number = static_cast<unsigned char>(byte);
        const bool special = number >= FirstSpecial && number < FirstSpecial + Special.size();
        text += QChar(special ? Special[number - FirstSpecial] : static_cast<char16_t>(number));
    }
    return text;
}

QByteArray EncodeSite(std::int16_t slot, const Site& site)
{
    QByteArray record(AddressAt, '\0');
    qToLittleEndian(slot, record.data());
    record += Field(site.Address, SiteAddressWidth);
    record += Field(site.User, SiteUserWidth);
    record += Field(site.Password, SitePasswordWidth);
    return record;
}

QByteArray BlankSite()
{
    return EncodeSite(0, {});
}

Site DecodeSite(const QByteArray& record)
{
    return {FieldText(record, AddressAt, SiteAddressWidth), FieldText(record, UserAt, SiteUserWidth),
            FieldText(record, PasswordAt, SitePasswordWidth)};
}

std::int16_t SlotOf(const QByteArray& record)
{
    return qFromLittleEndian<std::int16_t>(record.constData());
}
