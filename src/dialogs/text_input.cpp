#include "dialogs/text_input.h"

#include "base/conversions.h"
#include "shell/sole_input.h"
#include "ui_text_input.h"

#include <QCloseEvent>
#include <QDialog>
#include <QEventLoop>

namespace {

/// The form, loaded anew for every question. Enter is Ok and Escape is Cancel.
class Form final : public QDialog {
public:
    Form(QWidget& window, QString& inputText, const std::function<void()>& beep)
        : QDialog(&window), InputText(inputText), Beep(beep)
    {
        Ui.setupUi(this);
        setWindowFlag(Qt::WindowContextHelpButtonHint, false);
        setWindowModality(Qt::NonModal);
        connect(Ui.Command1, &QPushButton::clicked, this, &Form::Command1_Click);
        connect(Ui.Command2, &QPushButton::clicked, this, &Form::Command2_Click);
    }

    void Fill(const QString& title, const QString& prefill)
    {
        setWindowTitle(title);
        Ui.Text1->setText(prefill);
        Ui.Text1->selectAll();
        Ui.Text1->setFocus();
        Ui.Text1->setAccessibleName(title);
    }

    void Command1_Click()
    {
        const QString text = Ui.Text1->text();
        if (text.isEmpty()) {
            Beep();
            return;
        }
        InputText = Trimmed(text);
        done(Accepted);
    }

    void Command2_Click()
    {
        InputText.clear();
        done(Rejected);
    }

private:
    void reject() override { Command2_Click(); }

    // Closing by the title bar is no Cancel: InputText stays.
    void closeEvent(QCloseEvent* event) override
    {
        event->accept();
        done(Rejected);
    }

    Ui::frmText Ui;
    QString& InputText;
    const std::function<void()>& Beep;
};

}  // namespace

TextInputDialog::TextInputDialog(QWidget& window, SoleInput& input, QString& inputText, std::function<void()> beep)
    : Window(window), Input(input), InputText(inputText), Beep(std::move(beep))
{
}

void TextInputDialog::Ask(const QString& title, const QString& prefill)
{
    if (Ended) {
        InputText.clear();
        return;
    }
    Form form(Window, InputText, Beep);
    form.Fill(title, prefill);

    QEventLoop loop;
    connect(&form, &QDialog::finished, &loop, &QEventLoop::quit);
    connect(this, &TextInputDialog::EndRequested, &form, &Form::Command2_Click);
    const SoleInput::Turn turn(Input, form);
    form.show();
    form.activateWindow();
    loop.exec();
}

void TextInputDialog::End()
{
    Ended = true;
    emit EndRequested();
}
