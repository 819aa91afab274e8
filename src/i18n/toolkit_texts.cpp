#include "i18n/toolkit_texts.h"

#include "i18n/language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <algorithm>
#include <array>

namespace {

struct Source {
    int Base;
    const char* File;
};

/// Two languages have only a translation of an older toolkit.
constexpr std::array Sources{
    Source{2000, "qtbase_fr"}, Source{3000, "qtbase_es"}, Source{4000, "qtbase_da"},
    Source{5000, "qtbase_de"}, Source{6000, "qtbase_it"}, Source{7000, "qtbase_fi"},
    Source{8000, "qt_pt_PT"},  Source{9000, "qt_sv"},     Source{10000, "qtbase_pt_BR"},
};

}  // namespace

QString ToolkitTexts::Translations::translate(const char* context, const char* text, const char* remark,
                                              int count) const
{
    const QString found = QTranslator::translate(context, text, remark, count);
    const bool isButton = found.isEmpty() && qstrcmp(context, "QPlatformTheme") == 0;
    return isButton ? QTranslator::translate("QDialogButtonBox", text, remark, count) : found;
}

void ToolkitTexts::Follow(const Language& language)
{
    QCoreApplication::removeTranslator(&Texts);
    const auto* source = std::find_if(Sources.begin(), Sources.end(),
                                      [&](const Source& candidate) { return candidate.Base == language.LanguageBase; });
    if (source == Sources.end()) return;
    if (Texts.load(source->File, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&Texts);
}
