#pragma once

#include <QString>
#include <cstdint>

/// Conversions between texts and values as the settings store and the text boxes use them. Pure; any thread.

/// "True" or "False".
QString BooleanText(bool value);

/// "True" and "False" in any case, or a number (0 is false). Throws RuntimeError "Type mismatch" for other texts.
bool ToBoolean(const QString& text);

/// A whole number in -32768..32767; fractions are rounded to even. Throws "Type mismatch" for texts that are no
/// number and "Overflow" for numbers outside the range.
std::int16_t ToInteger16(const QString& text);

/// The same for -2147483648..2147483647.
std::int32_t ToInteger32(const QString& text);

/// A port number, 0..65535, with the errors of ToInteger16.
int ToPort(const QString& text);

/// The number a text begins with, blanks before it and inside it skipped; 0 when it begins with none.
double LeadingNumber(const QString& text);

/// The text without the blanks (U+0020 only) at both ends.
QString Trimmed(const QString& text);
