#include "dialogs/web_pages.h"

#include "dialogs/maker.h"
#include "shell/asker.h"

#include <utility>

WebPages::WebPages(Tools tools) : Use(std::move(tools)) {}

void WebPages::Command3_Click()
{
    const Answer answer = Use.Questions.Ask(
        {"Launch  your Browser?  Do you wish to continue?", "Run WWW Browser?", Question::NoIcon, Question::YesNo});
    if (answer == Answer::Yes) Use.OpenAddress(Maker::WebAddress);
}

void WebPages::Label6_Click()
{
    Label7_Click();
}

void WebPages::Label7_Click()
{
    Command3_Click();
}

void WebPages::ads_Click()
{
    const Answer answer =
        Use.Questions.Ask({"Paperbird is our free desktop notebook: quick notes, found again in a moment.\r\n"
                           "Do you want to download it now? Your browser opens its page.",
                           "Quorvell Paperbird", Question::QuestionMark, Question::YesNo});
    if (answer == Answer::Yes) Use.OpenAddress(Maker::PaperbirdAddress);
}
