#include "app/language_menu.h"

#include "i18n/caption_setter.h"
#include "i18n/language.h"
#include "session/waits.h"
#include "shell/asker.h"
#include "shell/status_line.h"

#include <utility>

namespace {

constexpr auto MenusFollowLater = "The Menu will change on next session.\r\n"
                                  "Le menu changera à la prochaine session.\r\n"
                                  "El menú cambiará en siguiente la sesión.";
constexpr auto Title = "Information - Informaciones";

}  // namespace

LanguageMenu::LanguageMenu(QWidget& window, const Tools& tools)
    : Window(window), Use(tools), Chooser({tools.Texts, tools.Settings, tools.Input, tools.Errors})
{
    Toolkit.Follow(Use.Texts);
}

void LanguageMenu::mnuLamguage_Click()
{
    Chooser.Show(&Window);
    if (Use.Pause.Ending()) return;
    if (std::exchange(Use.Texts.LanguageCancelled, false)) return;
    SetCaptions(Window, Use.Texts, Use.Errors);
    Use.OfferOnAds();
    Toolkit.Follow(Use.Texts);
    Use.Status.ShowLines(MenusFollowLater);
    Use.Questions.Ask({Use.Status.Text(), Title, Question::Information, Question::Ok});
}
