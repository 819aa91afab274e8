// Takes pictures of the main window's form: form_pictures <folder> <what>. "light" and "dark" are its states under that
// palette, "languages" shows it and the language chooser in each language.

#include "base/run_time_error.h"
#include "i18n/caption_setter.h"
#include "i18n/language.h"
#include "i18n/language_chooser.h"
#include "shell/settings_store.h"
#include "shell/sole_input.h"
#include "support/palettes.h"
#include "support/sample_form.h"

#include <QApplication>
#include <QDir>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTimer>
#include <array>

namespace {

void Take(QWidget& window, const QString& file)
{
    window.show();
    QApplication::processEvents();
    if (!window.grab().save(file)) qFatal("Cannot write %s", qPrintable(file));
}

constexpr std::array LanguageNames{"english", "french",  "spanish",    "danish",  "german",
                                   "italian", "finnish", "portuguese", "swedish", "brazilian"};

void TakeStates(const QDir& folder)
{
    SampleForm form;
    ErrorRecord errors;
    SetCaptions(form, Language(), errors);
    form.FillIn();
    Take(form, folder.filePath("session.png"));
    form.UncoverCommandLine();
    form.ShowStopwatch();
    Take(form, folder.filePath("command_line.png"));
    form.ShowLog();
    Take(form, folder.filePath("log.png"));
}

void TakeChooser(Language& language, const QString& file)
{
    const QTemporaryDir nowhere;
    SettingsStore settings(nowhere.filePath("Tolvane.conf"));
    SoleInput input;
    ErrorRecord errors;
    LanguageChooser chooser({language, settings, input, errors});
    QTimer::singleShot(0, &chooser, [&] {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "frmOpen") Take(*window, file);
        chooser.End();
    });
    chooser.Show(nullptr);
}

void TakeLanguages(const QDir& folder)
{
    Language language;
    for (const char* name : LanguageNames) {
        SampleForm form;
        ErrorRecord errors;
        SetCaptions(form, language, errors);
        form.FillIn();
        form.Combo1->setCurrentIndex(-1);
        form.sbFTP->clear();
        form.UncoverCommandLine();
        Take(form, folder.filePath(QString(name) + ".png"));
        TakeChooser(language, folder.filePath(QString("chooser_%1.png").arg(name)));
        language.LanguageBase = static_cast<std::int16_t>(language.LanguageBase + 1000);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const QApplication program(argc, argv);
    if (argc < 3) qFatal("Usage: form_pictures <folder> light|dark|languages");
    const QString what = argv[2];
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(what == "dark" ? DarkPalette() : QApplication::style()->standardPalette());
    if (what == "languages")
        TakeLanguages(QDir(argv[1]));
    else
        TakeStates(QDir(argv[1]));
}
