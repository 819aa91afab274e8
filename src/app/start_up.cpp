#include "app/start_up.h"

#include "app/program_values.h"
#include "base/byte_text.h"
#include "base/conversions.h"
#include "base/formats.h"
#include "i18n/caption_setter.h"
#include "i18n/language.h"
#include "inet/inet.h"
#include "platform/current_folder.h"
#include "platform/short_path.h"
#include "session/timers.h"
#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/settings_store.h"

#include <filesystem>
#include <limits>
#include <system_error>

namespace {

constexpr auto Title = "Tolvane v3.2    (c) Quorvell. Free to use, free to share.";
constexpr auto NoProxy = "Enter proxy address here";
constexpr int StartsBetweenMessages = 4;
constexpr int TwipsPerPixel = 15;

}  // namespace

StartUp::StartUp(Controls controls, Tools tools) : Form(controls), Use(std::move(tools)) {}

void StartUp::InitialiseMainWindow()
{
    MakeTempFolder();
    ApplyLanguage();
    Form.Window.setWindowTitle(Title);
    Use.Values.Chosen.EscapePressed = false;
    ReadOptions();
    Use.Values.Start.LineBreak = "\r\n";
    ChooseStartFolder();
    OpenStartFolder();
    RestoreTimeout();
    ReadOption("FTP Address", true, Use.Values.Chosen.SaveAllInformation, Form.mnuSavFTPAddress);
    if (Use.Values.Chosen.SaveAllInformation)
        RestoreConnection();
    else
        ForgetConnection();
    Use.Values.Connection.ProtocolChoice = Inet::Ftp;
    Use.OfferOnAds();
    Use.Values.Start.InfoFilePath = ShortPath(Use.ProgramFolder + "/TolvInfo.dta");
    CountStart();
    Use.Log.Add("Session started at: " + GeneralDateTime(Use.Now()));
    Finish();
}

void StartUp::MakeTempFolder()
{
    std::error_code failure;
    std::filesystem::create_directory(FilePath(Use.ProgramFolder + "/Temp"), failure);
}

void StartUp::ApplyLanguage()
{
    SetCaptions(Form.Window, Use.Texts, Use.Values.Errors);
}

void StartUp::ReadOptions()
{
    Options& chosen = Use.Values.Chosen;
    ReadOption("NT", false, chosen.ShortNames, Form.mnuNT);
    ReadOption("UNIX", false, chosen.UnixListing, Form.mnuUNIX);
    ReadOption("LowerCase", false, chosen.LowerCaseNames, Form.mnuConvertLower);
    ReadOption("Alarm", false, chosen.AlarmOn, Form.mnuAlarm);
    ReadOption("Dups", false, chosen.CheckDuplicates);
    Form.Check2.setChecked(chosen.CheckDuplicates);
}

// A value that cannot be converted leaves the flag as it was; the check mark shows the flag in any case.
void StartUp::ReadOption(const char* key, bool absent, bool& flag)
{
    Use.Values.Errors.Attempt([&] { flag = Use.Settings.ReadBoolean(key, absent); });
}

void StartUp::ReadOption(const char* key, bool absent, bool& flag, QAction& entry)
{
    ReadOption(key, absent, flag);
    entry.setChecked(flag);
}

void StartUp::ChooseStartFolder()
{
    Options& chosen = Use.Values.Chosen;
    QString& folder = Use.Values.Start.StartFolder;
    ReadOption("DriveSav", true, chosen.SaveLastFolder, Form.mnuSaveFolder);
    folder = CurrentFolder();
    if (chosen.SaveLastFolder) folder = Use.Settings.Read("SaveDrive", folder);
    if (chosen.ShortNames) folder = ShortPath(folder);
}

// A folder that is gone leaves the panel on whatever folder is current.
void StartUp::OpenStartFolder()
{
    Use.Values.Errors.Attempt([this] { ChangeCurrentFolder(Use.Values.Start.StartFolder); });
    Use.Values.Errors.Attempt(Use.OpenLocalPanel);
}

// The slider keeps a value out of its range at the nearest end.
void StartUp::RestoreTimeout()
{
    Use.Values.Errors.Attempt([this] { Form.Slider1.setValue(ToInteger32(Use.Settings.Read("Timeout", "30"))); });
    Form.SlideVal.setText(QString::number(Form.Slider1.value()));
}

void StartUp::RestoreConnection()
{
    ConnectionValues& values = Use.Values.Connection;
    Use.LoadSites();
    values.SavedProxy = Use.Settings.Read("SaveProxy", NoProxy);
    Form.txtProxy.setText(values.SavedProxy);
    values.SavedUrl = Use.Settings.Read("SaveURL", {});
    Use.Values.Address.AddressRestored = true;
    Form.txtURL.setEditText(values.SavedUrl);
    values.SavedPassword = StoredUnlessMarked("SavePass");
    Form.txtPassword.setText(values.SavedPassword);
    values.SavedUser = StoredUnlessMarked("SaveUser");
    Form.txtUserName.setText(values.SavedUser);
}

void StartUp::ForgetConnection()
{
    Form.txtURL.setEditText({});
    Form.txtPassword.clear();
    Form.txtUserName.clear();
    Form.txtProxy.setText(NoProxy);
    Use.LoadSites();
}

// A lone "$" stands for no value.
QString StartUp::StoredUnlessMarked(const char* key) const
{
    const QString value = Use.Settings.Read(key, {});
    return Trimmed(value) == u"$" ? QString() : value;
}

// Every fifth start is one on which a message is due.
void StartUp::CountStart()
{
    StartValues& start = Use.Values.Start;
    Use.Values.Errors.Attempt([&] { start.MessageCounter = ToInteger16(Use.Settings.Read("Message", "0")); });
    Use.Values.Errors.Attempt([&] {
        if (start.MessageCounter == std::numeric_limits<std::int16_t>::max()) throw RuntimeError("Overflow");
        ++start.MessageCounter;
    });
    if (start.MessageCounter > StartsBetweenMessages) {
        start.MessageCounter = 0;
        start.MessageDue = true;
    }
    Use.Settings.Write("Message", QString::number(start.MessageCounter));
}

void StartUp::Finish()
{
    Use.Values.Start.NormalFormHeight = Form.Window.height() * TwipsPerPixel;
    Use.Clocks.Timer1.start();
    Form.Window.raise();
    Form.Window.activateWindow();
    Use.Pointer.SetNormalPointer();
}
