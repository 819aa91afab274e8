#include "dialogs/advertisements.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "dialogs/web_pages.h"
#include "i18n/language.h"

#include <utility>

namespace {

constexpr int OfferText = 73;

}  // namespace

Advertisements::Advertisements(Controls controls, const Language& texts, ErrorRecord& errors, WebPages& pages)
    : Form(std::move(controls)), Texts(texts), Errors(errors)
{
    for (const QAbstractButton* picture : Form.Ads)
        connect(picture, &QAbstractButton::clicked, &pages, &WebPages::ads_Click);
    connect(&Form.Timer4, &QTimer::timeout, this, &Advertisements::Timer4_Timer);
    Form.Timer4.start();
}

void Advertisements::Offer()
{
    Errors.Attempt([this] {
        const QString offer = Texts.LoadText(OfferText);
        for (QWidget* picture : Form.Ads) picture->setToolTip(offer);
    });
    SetAccessibleNames(Form.Window);
}

void Advertisements::ShowLast()
{
    if (!Form.Ads.empty()) BringToFront(Form.Ads.size() - 1);
}

void Advertisements::Timer4_Timer()
{
    if (!Form.Ads.empty()) BringToFront((Front + 1) % Form.Ads.size());
}

void Advertisements::BringToFront(std::size_t index)
{
    Front = index;
    Form.Ads[Front]->raise();
}
