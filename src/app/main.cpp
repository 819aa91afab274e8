#include "app/end_at_once.h"
#include "app/main_window.h"
#include "app/program_values.h"
#include "controls/desktop_drag.h"
#include "dialogs/maker.h"
#include "i18n/language.h"
#include "i18n/language_chooser.h"
#include "inet/transfer_component.h"
#include "platform/beep.h"
#include "platform/display_modes.h"
#include "platform/end_requests.h"
#include "platform/open_address.h"
#include "platform/places.h"
#include "platform/sound.h"
#include "platform/text_editor.h"
#include "shell/settings_store.h"
#include "shell/sole_input.h"

#include <QApplication>
#include <QSessionManager>
#ifdef Q_OS_WIN
#include "app/windows_start.h"
#endif

namespace {

/// Lets the user choose a language at the very first start. False when the program was told to end meanwhile.
bool ChooseLanguage(Language& texts, SettingsStore& settings, ErrorRecord& errors, const EndRequests& requests)
{
    SoleInput input;
    LanguageChooser chooser({texts, settings, input, errors});
    QObject::connect(&requests, &EndRequests::Requested, &chooser, &LanguageChooser::End);
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &chooser, &LanguageChooser::End);
    ChooseLanguageAtFirstStart(chooser, settings);
    return !chooser.Ended();
}

QString MessageAddress()
{
    const QString given = qEnvironmentVariable("TOLVANE_MESSAGE_URL");
    return given.isEmpty() ? QString(Maker::MessageAddress) : given;
}

}  // namespace

int main(int count, char** words)
{
#ifdef Q_OS_WIN
    PrepareForWindows();
#endif
    QApplication program(count, words);
#ifdef Q_OS_WIN
    const WindowsStyle style(program);
#endif
    QApplication::setApplicationName("Tolvane");
    QApplication::setQuitOnLastWindowClosed(false);

    SettingsStore settings;
    Language texts = LanguageFrom(settings);
    ProgramValues values;
    const EndRequests requests;
    if (!ChooseLanguage(texts, settings, values.Errors, requests)) return 0;

    Surroundings around;
    around.ProgramFolder = ProgramFolder();
    const auto ways = std::make_shared<Ftp::DataWayBook>((ProgramFolder() + "/TolvWays.dta").toStdU16String());
    around.MakeInet = [ways] { return std::make_unique<TransferComponent>(ways); };
    around.Beep = [] { Beep(); };
    SoundPlayer sounds;
    around.PlaySound = [&sounds](const QString& path) { sounds.Play(path); };
    around.OpenTextEditor = &OpenTextEditor;
    around.DragFiles = &DragFiles;
    around.OpenAddress = &OpenAddress;
    const std::unique_ptr<DisplayModes> screen = DesktopDisplayModes();
    around.Screen = screen.get();
    around.MessageAddress = MessageAddress();
    around.Now = &QDateTime::currentDateTime;
    around.Quit = [] { QCoreApplication::exit(0); };
    around.EndAtOnce = &EndAtOnce;

    MainWindow window(values, settings, texts, around);
    QObject::connect(&requests, &EndRequests::Requested, &window, &QWidget::close);
    QObject::connect(&program, &QGuiApplication::commitDataRequest, &window, &QWidget::close);

    window.Form_Initialize();
    window.Form_Load();
    if (window.Ended()) return 0;
    window.show();
    return QApplication::exec();
}
