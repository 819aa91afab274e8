#pragma once

#include "base/run_time_error.h"
#include "sites/address_box.h"
#include "sites/site_file.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <functional>

class ActivityLog;
class Asker;
class SettingsStore;
class StatusLine;
struct ConnectionValues;
struct Options;

/// The site book: addresses with the user IDs and passwords that went with them, kept in Tolvane.dta and offered in
/// the address box. A file operation that fails ends what was going on without a message. User-interface thread.
class SiteBook final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QComboBox& txtURL;  ///< made editable; its events are taken care of here
        QLineEdit& txtUserName;
        QLineEdit& txtPassword;
        QAbstractButton& Command17;  ///< "+" while the next add may replace a site
        QAction& mnuSavFTPAddress;   ///< must not change its mark by itself when it is triggered
    };

    struct Tools {
        AddressState& Address;
        Options& Chosen;
        ConnectionValues& Values;
        SettingsStore& Settings;
        Asker& Questions;
        StatusLine& Status;
        ActivityLog& Log;
        ErrorRecord& Errors;
        std::function<QString(int)> LoadText;  ///< a string of the current language
        std::function<void()> Beep;
    };

    /// `folder` is the program's folder.
    SiteBook(Controls controls, Tools tools, QString folder);

    /// Loads the file into the arrays; with `fillList` every address is appended to the list of txtURL too.
    void GetURLs(bool fillList);

    /// Adds the site of the current connect to the book, or renews its record when ReplaceSite is set. An empty user
    /// ID or password becomes its mark in the connection values themselves.
    void AddCurrentSite();

    void txtURL_Click();     ///< fills the user ID and password of the selected entry in, when all information is saved
    void txtURL_DropDown();  ///< the same
    void txtURL_Change();    ///< the same, but for a change that was announced by AddressRestored
    void Command17_Click();  ///< turns ReplaceSite on and off
    void Command18_Click();  ///< asks, then erases the selected entry
    void Command12_Click();  ///< asks, then erases the whole book
    void mnuSavFTPAddress_Click();

    bool ReplaceSite() const { return Replace; }

    const SiteArrays& Arrays() const { return Book; }

private:
    SiteFile File() const;

    int Position() const { return Box.Selected() + 1; }

    void FillBoxes();
    int Find(const QString& address) const;
    void MarkEmptyValues();
    void EraseSelected();

    Controls Form;
    Tools Use;
    QString Folder;
    AddressBox Box;
    SiteArrays Book;
    bool Replace = false;
};
