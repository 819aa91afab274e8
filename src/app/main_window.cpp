#include "app/main_window.h"

#include "app/escape_key.h"
#include "app/language_menu.h"
#include "app/program_menu.h"
#include "app/program_values.h"
#include "app/shut_down.h"
#include "app/start_up.h"
#include "controls/covered_area.h"
#include "dialogs/about_box.h"
#include "dialogs/advertisements.h"
#include "dialogs/help_pages.h"
#include "dialogs/picture_viewer.h"
#include "dialogs/screen_res.h"
#include "dialogs/text_input.h"
#include "dialogs/web_pages.h"
#include "i18n/language.h"
#include "inet/inet.h"
#include "local/disk_space.h"
#include "local/local_operations.h"
#include "local/local_panel.h"
#include "platform/drives.h"
#include "platform/places.h"
#include "remote/remote_operations.h"
#include "remote/remote_panel.h"
#include "session/command_line.h"
#include "session/commands.h"
#include "session/connection.h"
#include "session/message_ticker.h"
#include "session/pacing.h"
#include "session/protocol_menu.h"
#include "session/state_changes.h"
#include "session/stopwatch.h"
#include "session/timers.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/sole_input.h"
#include "shell/status_line.h"
#include "sites/certificate_question.h"
#include "sites/clipboard_watch.h"
#include "sites/site_book.h"
#include "transfer/name_options.h"
#include "transfer/progress_view.h"
#include "transfer/receiver.h"
#include "transfer/sender.h"
#include "ui_main_window.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <utility>

// The linker leaves out what a library registers by itself. The macro must stand outside of namespaces.
static void RegisterIcons()
{
    Q_INIT_RESOURCE(resources);
}

namespace {

constexpr auto AlarmFile = "Alarm.WAV";
constexpr QSize FullSize{960, 571};  // the command line included

struct BuiltForm : Ui::Tolvane {
    explicit BuiltForm(QMainWindow& window)
    {
        RegisterIcons();
        setupUi(&window);
    }
};

/// What follows a connect and a completed command, by the rooms that do it.
struct Followers final : FollowUps {
    Followers(RemotePanel& remote, Receiver& receiver, Sender& sender, SiteBook& book)
        : Remote(remote), Incoming(receiver), Outgoing(sender), Book(book)
    {
    }

    void ShowRemoteFileList() override { Remote.ShowRemoteFileList(); }

    void FinishReceive() override { Incoming.FinishReceive(); }

    void FinishSend() override { Outgoing.FinishSend(); }

    void AddCurrentSite() override { Book.AddCurrentSite(); }

    RemotePanel& Remote;
    Receiver& Incoming;
    Sender& Outgoing;
    SiteBook& Book;
};

std::unique_ptr<Inet> Named(std::unique_ptr<Inet> inet, const char* name)
{
    inet->setObjectName(name);
    return inet;
}

/// Whether nothing that reacts to the mouse lies at a place of the window.
bool IsFreeArea(const QWidget& window, const QPoint& at)
{
    const QWidget* there = window.childAt(at);
    if (there == nullptr) return true;
    const QMetaObject* kind = there->metaObject();
    return kind == &QWidget::staticMetaObject || kind == &QFrame::staticMetaObject;
}

/// A checkable entry flips its mark itself when it is chosen; its handler wants to find the mark as it was.
template <typename Room>
void OnChosen(QAction* entry, Room& room, void (Room::*handler)())
{
    QObject::connect(entry, &QAction::triggered, &room, [entry, &room, handler] {
        if (entry->isCheckable()) entry->toggle();
        (room.*handler)();
    });
}

}  // namespace

/// The window's subsystems. Each gets the controls and the values it works with; who is named below is built later
/// and may use who stands above.
struct MainWindow::Parts {
    Parts(MainWindow& window, ProgramValues& values, SettingsStore& settings, Language& texts,
          Surroundings surroundings);

    std::vector<QAbstractButton*> Ads(MainWindow& window) const;
    void OfferOnAds();

    Surroundings Around;
    BuiltForm Form;
    CoveredArea Area;
    std::unique_ptr<Inet> Inet1;  ///< the session
    std::unique_ptr<Inet> Inet2;  ///< the second channel
    std::unique_ptr<Inet> Inet3;  ///< fetches the message file

    Waits Pause;
    BusyPointer Pointer;
    StatusLine Status;
    ActivityLog Log;
    SoleInput Input;
    MessageBoxAsker Boxes;
    Asker& Questions;
    CertificateQuestion Certificates;
    TextInputDialog Dialog;
    TextInput& Prompt;
    Timers Clocks;
    EscapeKey Escape;

    Commands Session;
    Pacing Pace;
    Stopwatch Watch;
    SiteBook Book;
    DesktopClipboard Clipboard;
    ClipboardWatch ClipWatch;
    Followers Above;
    Connection Site;
    RemotePanel Remote;
    RemoteOperations Operations;
    DiskSpace Space;
    LocalPanel Local;
    NameOptions Names;
    TransferTools Transfers;
    Receiver Incoming;
    Sender Outgoing;
    ProgressView Progress;
    PictureViewer Viewer;
    LocalOperations Files;
    StateChanges Changes;

    CommandLine Line;
    ProtocolMenu Protocols;
    MessageTicker Ticker;
    WebPages Pages;
    AboutBox About;
    HelpPages Help;
    Advertisements Strip;
    ScreenRes Resolutions;

    ProgramMenu Menu;
    LanguageMenu Languages;
    StartUp Start;
    ShutDown End;
};

MainWindow::Parts::Parts(MainWindow& window, ProgramValues& values, SettingsStore& settings, Language& texts,
                         Surroundings surroundings)
    : Around(std::move(surroundings)), Form(window), Area(*Form.Central, *Form.Content, FullSize),
      Inet1(Named(Around.MakeInet(), "Inet1")), Inet2(Named(Around.MakeInet(), "Inet2")),
      Inet3(Named(Around.MakeInet(), "Inet3")), Status(*Form.sbFTP),
      Log({*Form.List2, *Form.Command22, *Form.Command23, *Form.Command25, *Form.List1}, Around.ProgramFolder, Pointer,
          Around.Beep, Around.Now),
      Boxes(window, Input), Questions(Around.Questions != nullptr ? *Around.Questions : Boxes),
      Certificates(Questions, values.Errors, Around.ProgramFolder),
      Dialog(window, Input, values.InputText, Around.Beep), Prompt(Around.Prompt != nullptr ? *Around.Prompt : Dialog),
      Clocks(window), Escape(window, values.Chosen.EscapePressed),
      Session(*Inet1, values.Transfer, values.Chosen, Pause),
      Pace({*Form.Slider1, *Form.SlideVal}, {*Inet1, values.Transfer, Clocks, Pause, Status, Pointer, Questions,
                                             settings, values.Errors, [&window] { window.close(); },
                                             [this, &window] {
                                                 window.hide();
                                                 Around.EndAtOnce();
                                             }}),
      Watch({*Form.LblTimer, *Form.cmdPause, *Form.Command13}, Clocks.Timer3),
      Book({*Form.txtURL, *Form.txtUserName, *Form.txtPassword, *Form.Command17, *Form.mnuSavFTPAddress},
           {values.Address, values.Chosen, values.Connection, settings, Questions, Status, Log, values.Errors,
            [&texts](int number) { return texts.LoadText(number); }, Around.Beep},
           Around.ProgramFolder),
      Clipboard(*QGuiApplication::clipboard()),
      ClipWatch({*Form.mnuWatchClip, *Form.cmdPaste, *Form.cmdPaste2, *Form.txtURL, *Form.txtCom}, values.Address,
                Clipboard, Around.Beep),
      Above(Remote, Incoming, Outgoing, Book),
      Site({*Form.txtURL, *Form.txtUserName, *Form.txtPassword, *Form.txtPort, *Form.Combo1, *Form.txtProxy,
            *Form.Slider1, *Form.Check1},
           {*Inet1, Session, values.Transfer, values.Connection, values.Chosen, settings, texts, Status, Log, Pointer,
            values.Errors, Above, values.Start.MessageDue, Clocks.Timer5}),
      Remote({*Form.lstRemoteFiles, *Form.Label2_0, *Form.mnuUNIX},
             {Session, values.Transfer, Pause, values.Chosen, settings, Status, Log, Pointer, values.Errors}),
      Operations({*Form.lstRemoteFiles, *Form.List2},
                 {*Inet1, Session, values.Transfer, Pause, Status, Log, Pointer, Questions, Prompt, values.InputText,
                  values.Errors, Around.Beep, [this] { Pace.ShortDelay(); }, Around.OpenTextEditor}),
      Space({*Form.DrvSpace, *Form.DrvSpaceTrue}, values.Errors),
      Local({*Form.Drive1, *Form.Dir1, *Form.List1, *Form.Combo2, *Form.Label2_1},
            {Space, Status, Pause, values.Errors, &Drives}),
      Names({*Form.mnuNT, *Form.mnuConvertLower, *Form.mnuAlarm, *Form.Check2}, values.Chosen, settings),
      Transfers{*Inet1,
                Session,
                values.Transfer,
                Pause,
                values.Chosen,
                Names,
                Status,
                Log,
                Pointer,
                Questions,
                values.Errors,
                [this] { Site.Command1_Click(); },
                [this] { Around.PlaySound(ShippedFile(Around.ProgramFolder, AlarmFile)); },
                [this] { Pace.ShortDelay(); }},
      Incoming({*Form.lstRemoteFiles, *Form.List1, *Form.Check1}, Transfers, *Inet2,
               {[this] { Local.RefreshList(); }, [this] { Space.RefreshDiskSpace(); }}),
      Outgoing({*Form.lstRemoteFiles, *Form.List1, *Form.Check1}, Transfers, Around.Beep),
      Progress(*Inet1, *Form.TransferProgress), Viewer(window, values.ViewerOpen),
      Files(*Form.List1, {Status, Log, Pause, Questions, Prompt, values.InputText, Viewer, values.ViewerOpen,
                          values.Errors, [this] { Local.RefreshList(); }, Around.OpenTextEditor, Around.Beep}),
      Changes(*Form.Check1, {*Inet1, values.Transfer, Status, Log, Pointer, Pause, values.Errors, Above, Around.Beep}),
      Line({window, *Form.mnuCommand, *Form.LblCommandLine, *Form.Label15, *Form.cmdPaste2, *Form.txtCom,
            *Form.Command14, *Form.sbFTP2},
           {*Inet1, *Inet2, Log, Pointer, values.Errors, values.Start.NormalFormHeight, [this] { Local.RefreshList(); },
            Around.Beep}),
      Protocols({{Form.Protocol2_1, Form.Protocol2_2, Form.Protocol2_3, Form.Protocol2_4}, *Form.txtPort},
                values.Connection),
      Ticker(*Form.lblAds, {*Inet3, Clocks.Timer5, Clocks.Timer6, Pointer, values.Errors, Around.ProgramFolder,
                            Around.MessageAddress}),
      Pages({Questions, Around.OpenAddress}), About(window, texts, Pages),
      Help({texts, Questions, values.Errors, Around.ProgramFolder, Around.OpenTextEditor}),
      Strip({window, Ads(window), Clocks.Timer4}, texts, values.Errors, Pages),
      Resolutions(window, {*Around.Screen, Questions, values.Errors}),
      Menu({window, *Form.mnuSaveFolder}, values, settings),
      Languages(window, {texts, settings, Input, values.Errors, Status, Questions, Pause, [this] { Strip.Offer(); }}),
      Start({window, *Form.mnuNT, *Form.mnuUNIX, *Form.mnuConvertLower, *Form.mnuAlarm, *Form.mnuSaveFolder,
             *Form.mnuSavFTPAddress, *Form.Check2, *Form.Slider1, *Form.SlideVal, *Form.txtURL, *Form.txtUserName,
             *Form.txtPassword, *Form.txtProxy},
            {values, settings, texts, Log, Pointer, Clocks, Around.ProgramFolder, Around.Now, [this] { Local.Open(); },
             [this] { Book.GetURLs(true); }, [this] { OfferOnAds(); }}),
      End({values, settings, Pause, Questions, Prompt, Around.Quit})
{
}

void MainWindow::Parts::OfferOnAds()
{
    Strip.Offer();
    Strip.ShowLast();
}

std::vector<QAbstractButton*> MainWindow::Parts::Ads(MainWindow& window) const
{
    std::vector<QAbstractButton*> pictures;
    while (auto* picture = window.findChild<QAbstractButton*>(QString("ads_%1").arg(pictures.size())))
        pictures.push_back(picture);
    return pictures;
}

MainWindow::MainWindow(ProgramValues& values, SettingsStore& settings, Language& texts, Surroundings around)
    : Own(std::make_unique<Parts>(*this, values, settings, texts, std::move(around)))
{
    WireSession();
    WirePanels();
    WireSites();
    WireDrags();
    WireMenus();
    WireOperations();
    WirePacing();
    WireSecondChannel();
    WireSmallWindows();
}

MainWindow::~MainWindow() = default;

void MainWindow::WireSession()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    connect(own.Inet1.get(), &Inet::StateChanged, &own.Changes, &StateChanges::Inet1_StateChanged);
    connect(own.Inet1.get(), &Inet::Remarked, &own.Changes, &StateChanges::Inet1_Remarked);
    connect(form.cmdConnect, &QAbstractButton::clicked, &own.Site, &Connection::cmdConnect_Click);
    connect(form.Command1, &QAbstractButton::clicked, &own.Site, &Connection::Command1_Click);
    connect(form.Command8, &QAbstractButton::clicked, &own.Site, &Connection::Command8_Click);
    connect(form.Combo1, &QComboBox::currentIndexChanged, &own.Site, &Connection::Combo1_Click);
    connect(form.Command22, &QAbstractButton::clicked, &own.Log, &ActivityLog::Command22_Click);
    connect(form.Command23, &QAbstractButton::clicked, &own.Log, &ActivityLog::Command23_Click);
    connect(form.Command25, &QAbstractButton::clicked, &own.Log, &ActivityLog::Command25_Click);
}

void MainWindow::WirePanels()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    connect(form.lstRemoteFiles, &ListBox::Clicked, &own.Remote, &RemotePanel::lstRemoteFiles_Click);
    connect(form.lstRemoteFiles, &ListBox::DblClicked, &own.Remote, &RemotePanel::lstRemoteFiles_DblClick);
    connect(form.Command4, &QAbstractButton::clicked, &own.Remote, &RemotePanel::Command4_Click);
    connect(form.Drive1, &QComboBox::activated, &own.Local, &LocalPanel::Drive1_Change);
    connect(form.Combo2, &QComboBox::activated, &own.Local, &LocalPanel::Combo2_Click);
    connect(form.Combo2->lineEdit(), &QLineEdit::returnPressed, &own.Local, &LocalPanel::Combo2_Change);
    connect(form.List1, &ListBox::Clicked, &own.Files, &LocalOperations::List1_Click);
    connect(form.Command15, &QAbstractButton::clicked, &own.Files, &LocalOperations::Command15_Click);
    connect(form.Command19, &QAbstractButton::clicked, &own.Files, &LocalOperations::Command19_Click);
    connect(form.Command20, &QAbstractButton::clicked, &own.Files, &LocalOperations::Command20_Click);
    connect(form.Command21, &QAbstractButton::clicked, &own.Files, &LocalOperations::Command21_Click);
    connect(form.Dir1, &ListBox::DblClicked, &own.Local, &LocalPanel::Dir1_DblClick);
}

void MainWindow::WireSites()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    for (Inet* inet : {own.Inet1.get(), own.Inet2.get(), own.Inet3.get()})
        inet->SetCertificateJudge([&own](const auto& shown) { return own.Certificates.Accepts(shown); });
    connect(form.Command12, &QAbstractButton::clicked, &own.Book, &SiteBook::Command12_Click);
    connect(form.Command17, &QAbstractButton::clicked, &own.Book, &SiteBook::Command17_Click);
    connect(form.Command18, &QAbstractButton::clicked, &own.Book, &SiteBook::Command18_Click);
    connect(form.cmdPaste, &QAbstractButton::clicked, &own.ClipWatch, &ClipboardWatch::cmdPaste_Click);
    connect(form.cmdPaste2, &QAbstractButton::clicked, &own.ClipWatch, &ClipboardWatch::cmdPaste2_Click);
}

void MainWindow::WireDrags()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    connect(form.List1, &ListBox::DragDropped, &own.Incoming, &Receiver::List1_DragDrop);
    connect(form.Dir1, &ListBox::DragDropped, &own.Incoming, &Receiver::Dir1_DragDrop);
    connect(form.lstRemoteFiles, &ListBox::DragDropped, &own.Outgoing, &Sender::lstRemoteFiles_DragDrop);
    connect(form.lstRemoteFiles, &ListBox::FilesDropped, &own.Outgoing, &Sender::lstRemoteFiles_FilesDropped);
    for (const ListBox* list : {form.lstRemoteFiles, form.List1})
        connect(list, &ListBox::DragBegun, own.Inet1.get(), [list, inet = own.Inet1.get()] {
            if (list->selectionModel()->hasSelection()) inet->GetReady();
        });
    form.lstRemoteFiles->TakeFiles();
    form.List1->OfferFiles({[&own] { return own.Files.SelectedFiles(); }, own.Around.DragFiles});
    connect(form.Image1, &QAbstractButton::clicked, &own.Outgoing, &Sender::Image1_Click);
    connect(form.Image2, &QAbstractButton::clicked, &own.Incoming, &Receiver::Image2_Click);
    connect(form.Image3, &QAbstractButton::clicked, &own.Names, &NameOptions::Image3_Click);
}

void MainWindow::WireMenus()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    OnChosen(form.mnuNT, own.Names, &NameOptions::mnuNT_Click);
    OnChosen(form.mnuConvertLower, own.Names, &NameOptions::mnuConvertLower_Click);
    OnChosen(form.mnuAlarm, own.Names, &NameOptions::mnuAlarm_Click);
    OnChosen(form.mnuUNIX, own.Remote, &RemotePanel::mnuUNIX_Click);
    OnChosen(form.mnuSaveFolder, own.Menu, &ProgramMenu::mnuSaveFolder_Click);
    OnChosen(form.mnuSavFTPAddress, own.Book, &SiteBook::mnuSavFTPAddress_Click);
    OnChosen(form.mnuWatchClip, own.ClipWatch, &ClipboardWatch::mnuWatchClip_Click);
    OnChosen(form.mnuLamguage, own.Languages, &LanguageMenu::mnuLamguage_Click);
    OnChosen(form.mnuExit, own.Menu, &ProgramMenu::mnuExit_Click);
}

void MainWindow::WireOperations()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    RemoteOperations& operations = own.Operations;
    connect(form.Command10, &QAbstractButton::clicked, &operations, &RemoteOperations::Command10_Click);
    connect(form.Command6, &QAbstractButton::clicked, &operations, &RemoteOperations::Command6_Click);
    connect(form.Command7, &QAbstractButton::clicked, &operations, &RemoteOperations::Command7_Click);
    connect(form.Command9, &QAbstractButton::clicked, &operations, &RemoteOperations::Command9_Click);
    connect(form.Command5, &QAbstractButton::clicked, &operations, &RemoteOperations::Command5_Click);
    connect(form.Command16, &QAbstractButton::clicked, &operations, &RemoteOperations::Command16_Click);
    connect(form.lstRemoteFiles, &ListBox::DeletePressed, &operations, &RemoteOperations::lstRemoteFiles_KeyDown);
}

void MainWindow::WirePacing()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    connect(form.Command2, &QAbstractButton::clicked, &own.Pace, &Pacing::Command2_Click);
    connect(form.Slider1, &QAbstractSlider::valueChanged, &own.Pace, &Pacing::Slider1_Change);
    connect(form.Command11, &QAbstractButton::clicked, &own.Watch, &Stopwatch::Command11_Click);
    connect(form.cmdPause, &QAbstractButton::clicked, &own.Watch, &Stopwatch::cmdPause_Click);
    connect(form.Command13, &QAbstractButton::clicked, &own.Watch, &Stopwatch::Command13_Click);
}

void MainWindow::WireSecondChannel()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    connect(own.Inet2.get(), &Inet::StateChanged, &own.Line, &CommandLine::Inet2_StateChanged);
    connect(form.Command14, &QAbstractButton::clicked, &own.Line, &CommandLine::Command14_Click);
    connect(form.txtCom->lineEdit(), &QLineEdit::returnPressed, &own.Line, &CommandLine::Command14_Click);
    OnChosen(form.mnuCommand, own.Line, &CommandLine::mnuCommand_Click);
    OnChosen(form.mnuMesgUpdate, own.Ticker, &MessageTicker::mnuMesgUpdate_Click);
}

void MainWindow::WireSmallWindows()
{
    Parts& own = *Own;
    const Ui::Tolvane& form = own.Form;
    connect(&own.Clocks.Timer1, &QTimer::timeout, &own.About, &AboutBox::Timer1_Timer);
    connect(form.Command3, &QAbstractButton::clicked, &own.Pages, &WebPages::Command3_Click);
    OnChosen(form.mnuAbout, own.About, &AboutBox::mnuAbout_Click);
    OnChosen(form.mnuHelp2, own.Help, &HelpPages::mnuHelp2_Click);
    OnChosen(form.mnuFree, own.Help, &HelpPages::mnuFree_Click);
}

void MainWindow::Form_Initialize()
{
    Own->About.ShowAtStart();
}

void MainWindow::Form_Load()
{
    Own->Start.InitialiseMainWindow();
}

bool MainWindow::Ended() const
{
    return Own->Pause.Ending();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    Own->End.Form_QueryUnload();
    event->accept();
}

void MainWindow::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton && IsFreeArea(*this, event->position().toPoint()))
        Own->Resolutions.PopUp(event->globalPosition().toPoint());
    else
        QMainWindow::mousePressEvent(event);
}

// The menu key does the same for those without a mouse.
void MainWindow::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        Own->Resolutions.PopUp(event->globalPos());
    else
        event->accept();
}
