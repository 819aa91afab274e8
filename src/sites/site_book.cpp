#include "sites/site_book.h"

#include "base/conversions.h"
#include "platform/short_path.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/connection_values.h"
#include "shell/options.h"
#include "shell/settings_store.h"
#include "shell/status_line.h"

#include <QDir>

namespace {

constexpr int EraseQuestion = 74;  ///< "Erase highlighted URL?"
constexpr int EraseTitle = 75;     ///< "Erase URL?"

QString Unmarked(const QString& value)
{
    return value == EmptyUserMark ? QString() : value;
}

}  // namespace

SiteBook::SiteBook(Controls controls, Tools tools, QString folder)
    : Form(controls), Use(std::move(tools)), Folder(std::move(folder)), Box(controls.txtURL)
{
    connect(&Box, &AddressBox::Picked, this, &SiteBook::txtURL_Click);
    connect(&Box, &AddressBox::DropsDown, this, &SiteBook::txtURL_DropDown);
    connect(&Box, &AddressBox::Changed, this, &SiteBook::txtURL_Change);
}

SiteFile SiteBook::File() const
{
    return SiteFile(ShortPath(QDir(Folder).filePath("Tolvane.dta")));
}

void SiteBook::GetURLs(bool fillList)
{
    constexpr std::int16_t Uncounted = -1;
    SiteArrays loaded;
    loaded.RecordCount = Uncounted;
    Use.Errors.Attempt([&] { File().Load(loaded); });
    if (loaded.RecordCount == Uncounted) return;
    Book = std::move(loaded);
    if (fillList) Box.Add(Book.Urls.mid(1, Book.LoadedCount));
}

// Entry 0 is there, and empty, once the book has been loaded: a text that was typed empties both boxes.
void SiteBook::FillBoxes()
{
    const int position = Position();
    if (position >= Book.Users.size() || !Use.Chosen.SaveAllInformation) return;
    Form.txtUserName.setText(Unmarked(Book.Users[position]));
    Form.txtPassword.setText(Unmarked(Book.Passwords[position]));
}

void SiteBook::txtURL_Click()
{
    FillBoxes();
}

void SiteBook::txtURL_DropDown()
{
    FillBoxes();
}

void SiteBook::txtURL_Change()
{
    if (Use.Address.AddressRestored)
        Use.Address.AddressRestored = false;
    else
        FillBoxes();
}

/// The position of an address in the arrays; one behind the last record when it is not in the book.
int SiteBook::Find(const QString& address) const
{
    int position = 1;
    while (position <= Book.RecordCount && Trimmed(Book.Urls[position]) != address) ++position;
    return position;
}

void SiteBook::MarkEmptyValues()
{
    if (Use.Values.SavedUser.isEmpty()) Use.Values.SavedUser = EmptyUserMark;
    if (Use.Values.SavedPassword.isEmpty()) Use.Values.SavedPassword = EmptyPasswordMark;
}

void SiteBook::AddCurrentSite()
{
    const ConnectionValues& values = Use.Values;
    if (values.SavedUrl.isEmpty()) {
        Use.Beep();
        return;
    }
    GetURLs(false);
    const int position = Find(Trimmed(values.SavedUrl));
    if (position <= Book.RecordCount && !Replace) return;

    Form.Command17.setText({});
    Box.Add({values.SavedUrl});
    MarkEmptyValues();
    Use.Errors.Attempt([&] {
        const Site site{values.SavedUrl, values.SavedUser, values.SavedPassword};
        if (Replace)
            File().Put(position, site);
        else
            File().Append(site);
        Replace = false;
        GetURLs(false);
    });
}

void SiteBook::Command17_Click()
{
    Replace = !Replace;
    Form.Command17.setText(Replace ? "+" : "");
}

void SiteBook::Command18_Click()
{
    Use.Errors.Attempt([&] {
        const Question question{Use.LoadText(EraseQuestion), Use.LoadText(EraseTitle), Question::Critical,
                                Question::YesNo, true};
        if (Use.Questions.Ask(question) == Answer::Yes) EraseSelected();
    });
}

void SiteBook::EraseSelected()
{
    constexpr int SecondEntry = 1;
    File().Erase(Position());
    Box.Clear();
    GetURLs(true);
    if (Box.Select(SecondEntry)) txtURL_Click();
}

void SiteBook::Command12_Click()
{
    const Question question{"Erase URL & Password list?", Use.Status.Text(), Question::NoIcon, Question::YesNo, true};
    if (Use.Questions.Ask(question) != Answer::Yes) return;
    Use.Status.Show("List Erased!");
    Use.Errors.Attempt([&] { File().Remove(); });
    Box.Clear();
    Use.Log.AddWithDateTime("Erased URL's and Passwords at: ");
}

void SiteBook::mnuSavFTPAddress_Click()
{
    ToggleOption(Use.Chosen.SaveAllInformation, Form.mnuSavFTPAddress, Use.Settings, "FTP Address");
    Use.Settings.Write("SaveURL", Use.Chosen.SaveAllInformation ? Use.Values.SavedUrl : QString());
}
