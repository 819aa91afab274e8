#include "base/conversions.h"

#include "base/run_time_error.h"

#include <cmath>
#include <limits>

namespace {

constexpr QChar Blank = u' ';

double ToNumber(const QString& text)
{
    bool good = false;
    const double number = Trimmed(text).toDouble(&good);
    if (!good || !std::isfinite(number)) throw RuntimeError("Type mismatch");
    return number;
}

template <typename Integer>
Integer ToWhole(const QString& text, double lowest, double highest)
{
    const double number = std::nearbyint(ToNumber(text));
    if (number < lowest || number > highest) throw RuntimeError("Overflow");
    return static_cast<Integer>(number);
}

template <typename Integer>
Integer ToWhole(const QString& text)
{
    using Limits = std::numeric_limits<Integer>;
    return ToWhole<Integer>(text, Limits::min(), Limits::max());
}

bool IsNumberPart(QChar unit, const QString& before)
{
    if (unit.isDigit() && unit.unicode() < 0x80) return true;
    if (unit == u'.') return !before.contains(u'.');
    return before.isEmpty() && (unit == u'-' || unit == u'+');
}

}  // namespace

QString BooleanText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool ToBoolean(const QString& text)
{
    const QString value = Trimmed(text);
    if (value.compare(u"True", Qt::CaseInsensitive) == 0) return true;
    if (value.compare(u"False", Qt::CaseInsensitive) == 0) return false;
    return ToNumber(value) != 0;
}

std::int16_t ToInteger16(const QString& text)
{
    return ToWhole<std::int16_t>(text);
}

std::int32_t ToInteger32(const QString& text)
{
    return ToWhole<std::int32_t>(text);
}

int ToPort(const QString& text)
{
    return ToWhole<int>(text, 0, std::numeric_limits<std::uint16_t>::max());
}

double LeadingNumber(const QString& text)
{
    QString number;
    for (const QChar unit : text) {
        if (unit == Blank) continue;
        if (!IsNumberPart(unit, number)) break;
        number += unit;
    }
    return number.toDouble();
}

QString Trimmed(const QString& text)
{
    qsizetype first = 0;
    qsizetype end = text.size();
    while (first < end && text[first] == Blank) ++first;
    while (end > first && text[end - 1] == Blank) --end;
    return text.sliced(first, end - first);
}
