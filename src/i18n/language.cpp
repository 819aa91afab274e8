#include "i18n/language.h"

#include "base/conversions.h"
#include "base/run_time_error.h"
#include "i18n/text_table.h"
#include "shell/settings_store.h"

#include <array>

namespace {

constexpr int BlockDistance = 1000;

/// The blocks in the order of their ids; the first begins at 1000.
constexpr std::array<const TextTable*, 10> Blocks{
    &EnglishTexts, &FrenchTexts,  &SpanishTexts,    &DanishTexts,  &GermanTexts,
    &ItalianTexts, &FinnishTexts, &PortugueseTexts, &SwedishTexts, &BrazilianTexts,
};

/// The texts whose block begins at this id, or nothing.
const TextTable* TableAt(int base)
{
    const int block = base / BlockDistance - 1;
    return block >= 0 && block < static_cast<int>(Blocks.size()) ? Blocks[static_cast<std::size_t>(block)] : nullptr;
}

void ReadNumber(const SettingsStore& settings, const char* key, std::int16_t& number)
{
    try {
        number = ToInteger16(settings.Read(key, QString::number(number)));
    } catch (const RuntimeError&) {
        // A setting that is no number leaves the default.
    }
}

}  // namespace

QString Language::LoadText(int n) const
{
    const int id = LanguageBase + n;
    const int place = id % BlockDistance;
    const TextTable* table = id < 0 || place >= TextCount ? nullptr : TableAt(id - place);
    if (table == nullptr) throw RuntimeError(QStringLiteral("Resource with identifier '%1' not found").arg(id));
    return QString::fromUtf8((*table)[static_cast<std::size_t>(place)]);
}

Language LanguageFrom(const SettingsStore& settings)
{
    Language language;
    ReadNumber(settings, "Language", language.LanguageBase);
    ReadNumber(settings, "Language2", language.LanguageBase2);
    return language;
}
