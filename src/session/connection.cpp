#include "session/connection.h"

#include "base/conversions.h"
#include "i18n/language.h"
#include "inet/inet.h"
#include "session/commands.h"
#include "session/follow_ups.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/connection_values.h"
#include "shell/options.h"
#include "shell/settings_store.h"
#include "shell/status_line.h"

#include <QAbstractSlider>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTimer>

namespace {

constexpr int DisconnectText = 41;
constexpr int ConnectText = 70;
constexpr auto ClosingText = "Closing Connection.";

QString UsualPort(int protocol)
{
    switch (protocol) {
    case Inet::Http:
        return "80";
    case Inet::SecureHttp:
        return "443";
    default:
        return "21";
    }
}

bool EndsInBlankOrLineBreak(const QString& text)
{
    return text.endsWith(u'\n') || text.endsWith(u'\r') || text.endsWith(u' ');
}

}  // namespace

Connection::Connection(Controls controls, Tools tools) : Form(controls), Use(tools) {}

void Connection::cmdConnect_Click()
{
    RunHandler(Use.Errors, [this] {
        EndOldSession();
        try {
            Connect();
        } catch (const RuntimeError& error) {
            Use.Errors.Caught(error);
            Use.Status.Show(error.Description);
            Use.Log.Add(error.Description);
        }
        if (Use.MessageDue) Use.Timer5.start();
    });
}

// A connect is also a reconnect. A hang-up that still waits leaves the new session alone, so its marks go here.
void Connection::EndOldSession()
{
    ++Use.State.SessionNumber;
    Use.State.SkipListing = true;
    Use.Errors.Attempt([this] { Use.Inet1.Cancel(); });
    Use.Errors.Attempt([this] { Use.Session.ExecuteOn({}, CloseKind, "CLOSE"); });
    Use.State.SkipListing = false;
    Use.State.Closing = false;
    Use.Errors.Clear();
}

void Connection::Connect()
{
    Use.Pointer.SetBusyPointer();
    KeepValues();
    FillGaps();
    // The access type is handed over with the short listing only.
    if (Use.Chosen.UnixListing) SetAccess();
    SetProperties();
    Use.Session.RequestListing();
    Announce();
    NoteSite();
}

void Connection::KeepValues()
{
    ConnectionValues& values = Use.Values;
    values.SavedUrl = Form.txtURL.currentText();
    values.SavedPassword = Form.txtPassword.text();
    values.SavedUser = Form.txtUserName.text();
    values.SavedProxy = Form.txtProxy.text();
    Form.Check1.setEnabled(true);
    if (!Use.Chosen.SaveAllInformation) return;
    Use.Above.AddCurrentSite();
    StoreConnectionValues(values, Use.Settings);
}

void Connection::FillGaps()
{
    if (Form.txtPort.text().isEmpty()) Form.txtPort.setText("21");
    if (Form.Combo1.currentIndex() < 0) Form.Combo1.setCurrentIndex(0);
}

void Connection::SetAccess()
{
    Use.Inet1.SetAccessType(Form.Combo1.currentIndex());
    if (Form.Combo1.currentIndex() == Inet::NamedProxy) Use.Inet1.SetProxy(Form.txtProxy.text());
}

void Connection::SetProperties()
{
    Use.Inet1.SetURL(Trimmed(Form.txtURL.currentText()));
    Use.Inet1.SetUserName(Form.txtUserName.text());
    Use.Inet1.SetPassword(Form.txtPassword.text());
    Use.Inet1.SetRemotePort(ToPort(Form.txtPort.text()));
    Use.Inet1.SetProtocol(Use.Values.ProtocolChoice);
    Use.Inet1.SetRequestTimeout(Form.Slider1.value());
}

void Connection::Announce()
{
    Use.Log.AddWithDateTime(Use.Texts.LoadText(ConnectText) + "  -  " + Form.txtURL.currentText());
    Use.Status.Show("Connecting...");
}

void Connection::NoteSite()
{
    Use.State.CurrentSite = Trimmed(Form.txtURL.currentText());
    Use.State.CurrentUrl = Use.State.CurrentSite;
    if (EndsInBlankOrLineBreak(Use.State.CurrentUrl)) Use.State.CurrentUrl.chop(1);
}

void Connection::Command1_Click()
{
    RunHandler(Use.Errors, [this] { HangUp(); });
}

void Connection::HangUp()
{
    const int session = ++Use.State.SessionNumber;
    const auto replaced = [&] { return Use.State.SessionNumber != session; };

    Form.Check1.setEnabled(false);
    Use.State.Closing = true;
    Use.State.OperationKind = CloseKind;
    Use.Status.Show(ClosingText);
    Use.Session.WaitUntilIdle();
    if (replaced()) return;

    Use.State.OperationKind = CloseKind;
    Use.Errors.Attempt([this] { Use.Inet1.Cancel(); });
    Use.Session.WaitUntilIdle();
    if (replaced()) return;

    Use.State.SkipListing = true;
    Use.Errors.Attempt([this] { Use.Session.Execute(CloseKind, "CLOSE"); });
    Use.Status.Show(ClosingText);
    Use.Session.WaitUntilIdle();
    if (replaced()) return;

    Use.State.SkipListing = false;
    Use.State.Closing = false;
    Use.Status.Show(ClosingText);
    Use.Errors.Attempt([this] { Use.Log.AddWithDateTime(Use.Texts.LoadText(DisconnectText)); });
}

void Connection::Command8_Click()
{
    Form.txtPort.setText(UsualPort(Use.Values.ProtocolChoice));
}

void Connection::Combo1_Click()
{
    Form.txtProxy.setEnabled(Form.Combo1.currentIndex() == Inet::NamedProxy);
}
