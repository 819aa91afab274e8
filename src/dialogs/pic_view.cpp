#include "dialogs/pic_view.h"

#include "ui_pic_view.h"

#include <QCloseEvent>
#include <QScreen>
#include <QShortcut>

namespace {

constexpr int TwipsPerPixel = 15;
constexpr int FromLeftInTwips = 5200;
constexpr int FromTopInTwips = 970;

QString Sentence(PictureFault fault)
{
    switch (fault) {
    case PictureFault::Unreadable:
        return "The file cannot be read.";
    case PictureFault::Incomplete:
        return "The picture is incomplete: the file ends too early.";
    case PictureFault::TooLarge:
        return "The picture is too large to be shown.";
    default:
        return "The file is no picture that can be shown.";
    }
}

}  // namespace

PicView::PicView(QWidget& mainWindow) : QWidget(&mainWindow, Qt::Window), Form(std::make_unique<Ui::PicView>())
{
    Form->setupUi(this);
    Form->Sentence->hide();
    Form->Picture1->hide();
    const QPoint corner = mainWindow.frameGeometry().topLeft();
    move(corner +
         QPoint(qRound(qreal(FromLeftInTwips) / TwipsPerPixel), qRound(qreal(FromTopInTwips) / TwipsPerPixel)));
    connect(Form->Command1, &QPushButton::clicked, this, &PicView::CloseClicked);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &PicView::CloseClicked);
}

PicView::~PicView() = default;

QSize PicView::Room() const
{
    const QRect usable = screen()->availableGeometry();
    const QPoint corner = pos();
    const QSize frame = frameGeometry().size() - size();
    const QMargins edge = Form->Column->contentsMargins();
    const int button = Form->Buttons->sizeHint().height() + Form->Column->spacing();
    const QSize around = frame + QSize(edge.left() + edge.right(), edge.top() + edge.bottom() + button);
    const QSize rest = QSize(usable.right() - corner.x(), usable.bottom() - corner.y()).expandedTo(usable.size() / 2);
    return (rest.boundedTo(usable.size()) - around).expandedTo({1, 1});
}

void PicView::Take(const QString& fullName, const LoadedPicture& picture)
{
    Movie.reset();
    File.close();
    Form->Sentence->hide();
    Form->Image1->show();
    Form->Image1->setAccessibleName(fullName);
    if (picture.Fault != PictureFault::None)
        ShowSentence(picture.Fault);
    else if (picture.Moving)
        Play(fullName, picture);
    else
        ShowStill(picture);
    Form->Column->activate();
    resize(Form->Column->sizeHint());
}

void PicView::ShowStill(const LoadedPicture& picture)
{
    Form->Picture1->SetPicture(QPixmap::fromImage(picture.Still), picture.Shown);
    Form->Image1->SetPicture(Form->Picture1->Picture(), picture.Shown);
}

void PicView::Play(const QString& fullName, const LoadedPicture& picture)
{
    if (!OpenPicture(File, fullName)) {
        ShowSentence(PictureFault::Unreadable);
        return;
    }
    MovieSize = picture.Shown;
    Movie = std::make_unique<QMovie>(&File, "gif");
    Movie->setScaledSize(picture.Pixels);
    connect(Movie.get(), &QMovie::frameChanged, this, &PicView::ShowFrame);
    Movie->start();
    if (!Movie->isValid() || Movie->currentPixmap().isNull()) ShowSentence(PictureFault::NoPicture);
}

void PicView::ShowFrame()
{
    const QPixmap frame = Movie->currentPixmap();
    if (!frame.isNull()) Form->Image1->SetPicture(frame, MovieSize);
}

void PicView::ShowSentence(PictureFault fault)
{
    Form->Picture1->SetPicture({}, {});
    Form->Image1->SetPicture({}, {});
    Form->Image1->hide();
    Form->Sentence->setText(Sentence(fault));
    Form->Sentence->show();
}

void PicView::closeEvent(QCloseEvent* event)
{
    event->accept();
    emit Closed();
}
