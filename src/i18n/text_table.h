#pragma once

#include <array>

/// The texts of one language, UTF-8, in the same order in every language. "&" marks an accelerator.
inline constexpr int TextCount = 77;
using TextTable = std::array<const char*, TextCount>;

extern const TextTable EnglishTexts;
extern const TextTable FrenchTexts;
extern const TextTable SpanishTexts;
extern const TextTable DanishTexts;
extern const TextTable GermanTexts;
extern const TextTable ItalianTexts;
extern const TextTable FinnishTexts;
extern const TextTable PortugueseTexts;  ///< as in Portugal
extern const TextTable SwedishTexts;
extern const TextTable BrazilianTexts;  ///< Portuguese as in Brazil
