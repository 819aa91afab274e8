#include "dialogs/about_box.h"

#include "base/run_time_error.h"
#include "dialogs/web_pages.h"
#include "i18n/language.h"
#include "ui_about_box.h"

#include <QPixmap>
#include <QScreen>
#include <QTimer>

namespace {

constexpr int AboutCaption = 18;
constexpr auto Version = "Version 3.2";
constexpr int PictureEdge = 96;

/// The program's icon, which is among the pictures of the main window.
QPixmap Portrait(qreal ratio)
{
    const int edge = qRound(PictureEdge * ratio);
    QPixmap picture =
        QPixmap(":/icons/tolvane-256.png").scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    picture.setDevicePixelRatio(ratio);
    return picture;
}

}  // namespace

AboutBox::AboutBox(QWidget& mainWindow, const Language& texts, WebPages& pages)
    : MainWindow(mainWindow), Texts(texts), Pages(pages)
{
}

void AboutBox::Form_Load()
{
    Window = new QDialog(&MainWindow);
    Ui::Abouts form;
    form.setupUi(Window);
    Window->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    Window->setAttribute(Qt::WA_DeleteOnClose);
    ErrorRecord unheard;
    unheard.Attempt([&] { Window->setWindowTitle(Texts.LoadText(AboutCaption).remove(u'&')); });
    form.Image1->setPixmap(Portrait(Window->devicePixelRatioF()));
    form.Label2->setText(Version);
    form.Command1->setVisible(true);
    form.Command1->raise();
    connect(form.Command1, &QPushButton::clicked, this, &AboutBox::Command1_Click);
    connect(form.Label6, &LinkLabel::Clicked, &Pages, &WebPages::Label6_Click);
    connect(form.Label7, &LinkLabel::Clicked, &Pages, &WebPages::Label7_Click);
}

void AboutBox::mnuAbout_Click()
{
    if (!Window) Form_Load();
    Window->show();
    Window->raise();
    Window->activateWindow();
}

void AboutBox::ShowAtStart()
{
    MainWindow.winId();  // a dialog stays above a window that the system knows already
    if (!Window) Form_Load();
    Window->setAttribute(Qt::WA_ShowWithoutActivating);
    Window->adjustSize();
    QRect place = Window->rect();
    place.moveCenter(Window->screen()->availableGeometry().center());
    Window->move(place.topLeft());
    Window->show();
    // The main window comes to the front when its start is over.
    QTimer::singleShot(0, Window, &QWidget::raise);
}

void AboutBox::Command1_Click()
{
    if (Window) Window->close();
    Window.clear();
}

void AboutBox::Timer1_Timer()
{
    Command1_Click();
}
