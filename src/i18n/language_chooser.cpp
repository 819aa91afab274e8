#include "i18n/language_chooser.h"

#include "base/conversions.h"
#include "base/run_time_error.h"
#include "i18n/language.h"
#include "shell/settings_store.h"
#include "shell/sole_input.h"
#include "ui_language_chooser.h"

#include <QCloseEvent>
#include <QDialog>
#include <QEventLoop>

namespace {

constexpr int RequestText = 43;
constexpr int ReassuranceText = 44;

/// The form of one showing. Escape is Cancel.
class Form final : public QDialog {
public:
    Form(QWidget* over, Language& texts, SettingsStore& settings) : QDialog(over), Texts(texts), Settings(settings)
    {
        Ui.setupUi(this);
        setWindowModality(Qt::NonModal);

        const struct {
            QPushButton* Button;
            std::int16_t Base;
        } languages[] = {
            {Ui.Command1, 1000}, {Ui.Command2, 2000}, {Ui.Command5, 3000}, {Ui.Command3, 4000},  {Ui.Command4, 5000},
            {Ui.Command6, 6000}, {Ui.Command8, 7000}, {Ui.Command9, 8000}, {Ui.Command10, 9000}, {Ui.Command11, 10000},
        };

        for (const auto& language : languages)
            connect(language.Button, &QPushButton::clicked, this, [this, base = language.Base] { Choose(base); });
        connect(Ui.Command7, &QPushButton::clicked, this, &Form::Command7_Click);
    }

    void Form_Load(ErrorRecord& errors)
    {
        errors.Attempt([this] { Ui.Label4->setText(Texts.LoadText(ReassuranceText)); });
        errors.Attempt([this] { Ui.Label3->setText(Texts.LoadText(RequestText)); });
    }

private:
    void Choose(std::int16_t base)
    {
        Texts.LanguageBase = base;
        Settings.Write("Language", QString::number(base));
        Texts.LanguageBase2 = static_cast<std::int16_t>(base / 10);
        Settings.Write("Language2", QString::number(Texts.LanguageBase2));
        Settings.Save();
        done(Accepted);
    }

    void Command7_Click()
    {
        Texts.LanguageCancelled = true;
        done(Rejected);
    }

    void reject() override { Command7_Click(); }

    // Closing by the title bar is no Cancel.
    void closeEvent(QCloseEvent* event) override
    {
        event->accept();
        done(Rejected);
    }

    Ui::LanguageChooserForm Ui;
    Language& Texts;
    SettingsStore& Settings;
};

}  // namespace

LanguageChooser::LanguageChooser(const Tools& tools) : Use(tools) {}

void LanguageChooser::Show(QWidget* over)
{
    if (HasEnded) return;
    Form form(over, Use.Texts, Use.Settings);
    form.Form_Load(Use.Errors);

    QEventLoop loop;
    connect(&form, &QDialog::finished, &loop, &QEventLoop::quit);
    connect(this, &LanguageChooser::EndRequested, &form, &QWidget::close);
    const SoleInput::Turn turn(Use.Input, form);
    form.show();
    form.activateWindow();
    loop.exec();
}

void LanguageChooser::End()
{
    HasEnded = true;
    emit EndRequested();
}

void ChooseLanguageAtFirstStart(LanguageChooser& chooser, SettingsStore& settings)
{
    if (LeadingNumber(settings.Read("FLanguage", "0")) != 0) return;
    settings.Write("FLanguage", "1");
    settings.Save();
    chooser.Show(nullptr);
}
