#include "dialogs/help_pages.h"

#include "base/run_time_error.h"
#include "i18n/language.h"
#include "platform/places.h"
#include "shell/asker.h"

#include <QFileInfo>
#include <utility>

namespace {

constexpr int HelpText = 72;
constexpr int HelpCaption = 16;

constexpr auto WhyFree =
    "Tolvane costs nothing, and it will stay that way.\r\n"
    "\r\n"
    "We wrote it because we needed it: something small that moves files to a server and back, says what it is doing "
    "and keeps out of the way. Once it was there, giving it away was easier than selling it. You need no licence key, "
    "nothing runs out after thirty days, and the program tells nobody what you do with it. On every fifth start, when "
    "you connect, it fetches a small text with our news; nothing about you travels with it.\r\n"
    "\r\n"
    "What we hope for in return: if you like it, show it to a friend. And have a look at what else we make: Paperbird, "
    "the desktop notebook; Lanternfish, which finds the files that you have twice; and Saltmarsh, a calm alarm clock. "
    "The small pictures in the main window tell you about them, and nothing opens before you have said yes.\r\n"
    "\r\n"
    "You are welcome at www.quorvell.example (the WWW button leads there). Thank you for using Tolvane!";

}  // namespace

HelpPages::HelpPages(Tools tools) : Use(std::move(tools)) {}

void HelpPages::mnuHelp2_Click()
{
    Use.Errors.Attempt([this] {
        const QString text = Use.Texts.LoadText(HelpText) + "  View more help?";
        const Question help{QString(text).replace("\n", "\r\n"), Use.Texts.LoadText(HelpCaption).mid(1),
                            Question::Information, Question::YesNo, true};
        if (Use.Questions.Ask(help) == Answer::Yes) ShowManual();
    });
}

void HelpPages::ShowManual()
{
    const QString manual = ShippedFile(Use.ProgramFolder, "help.txt");
    const bool started = QFileInfo(manual).isFile() && Use.Errors.Attempt([&] { Use.OpenTextEditor(manual); });
    if (!started) Use.Questions.Ask({"Help.txt file missing", "Missing File", Question::NoIcon, Question::Ok});
}

void HelpPages::mnuFree_Click()
{
    Use.Questions.Ask({WhyFree, "Why free?", Question::Information, Question::Ok});
}
