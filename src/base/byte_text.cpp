#include "base/byte_text.h"

#include "base/local_name.h"

#include <QStringDecoder>
#include <QStringList>

namespace {

constexpr char16_t FirstEscape = 0xDC80;
constexpr char16_t LastEscape = 0xDCFF;

/// Length of the valid UTF-8 sequence that starts at `at` (1 to 4), or 0 when there is none (RFC 3629, 4).
qsizetype SequenceLength(const QByteArray& bytes, qsizetype at)
{
    const auto byte = [&](qsizetype offset) -> unsigned {
        return at + offset < bytes.size() ? static_cast<unsigned char>(bytes[at + offset]) : 0U;
    };
    const auto follows = [&](qsizetype offset, unsigned low = 0x80, unsigned high = 0xBF) {
        return byte(offset) >= low && byte(offset) <= high;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return follows(1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return follows(1, low, high) && follows(2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return follows(1, low, high) && follows(2) && follows(3) ? 4 : 0;
    }
    return 0;
}

bool IsEscape(QChar unit)
{
    return unit.unicode() >= FirstEscape && unit.unicode() <= LastEscape;
}

bool TurnsDirection(char16_t unit)
{
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) || unit == 0x200E ||
           unit == 0x200F || unit == 0x061C;
}

// A byte order mark is a character like any other: it stays.
QString FromUtf8(const char* bytes, qsizetype size)
{
    using Flag = QStringConverter::Flag;
    QStringDecoder decoder(QStringConverter::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(bytes, size));
}

}  // namespace

QString BytesToText(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    qsizetype good = 0;
    qsizetype at = 0;
    while (at < bytes.size()) {
        if (const qsizetype length = SequenceLength(bytes, at); length > 0) {
            at += length;
            continue;
        }
        text += FromUtf8(bytes.constData() + good, at - good);
        text += QChar(static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(bytes[at])));
        good = ++at;
    }
    text += FromUtf8(bytes.constData() + good, at - good);
    return text;
}

QByteArray TextToBytes(const QString& text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    qsizetype good = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const bool paired = at > 0 && text[at - 1].isHighSurrogate();
        if (!IsEscape(text[at]) || paired) continue;
        bytes += QStringView(text).sliced(good, at - good).toUtf8();
        bytes += static_cast<char>(text[at].unicode() & 0xFF);
        good = at + 1;
    }
    bytes += QStringView(text).sliced(good).toUtf8();
    return bytes;
}

QString ShownText(const QString& text)
{
    QString shown = text;
    for (qsizetype at = 0; at < shown.size(); ++at) {
        const QChar unit = shown[at];
        const bool paired = at > 0 && shown[at - 1].isHighSurrogate();
        if ((IsEscape(unit) && !paired) || unit.category() == QChar::Other_Control || TurnsDirection(unit.unicode()))
            shown[at] = QChar::ReplacementCharacter;
    }
    return shown;
}

QString ShownLines(const QString& text, QChar between)
{
    QStringList lines = text.split(QStringLiteral("\r\n"));
    for (QString& line : lines) line = ShownText(line);
    return lines.join(between);
}

std::filesystem::path FilePath(const QString& path)
{
#ifdef _WIN32
    return std::filesystem::path(LongForm(path).toStdWString());
#else
    return std::filesystem::path(TextToBytes(path).toStdString());
#endif
}

QString PathText(const std::filesystem::path& path)
{
#ifdef _WIN32
    return ShortForm(QString::fromStdWString(path.native()));
#else
    return BytesToText(QByteArray::fromStdString(path.native()));
#endif
}
