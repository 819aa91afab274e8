#pragma once

#include "dialogs/picture_file.h"

#include <QFile>
#include <QMovie>
#include <QWidget>
#include <memory>

namespace Ui {
class PicView;
}

/// The viewer's window. User-interface thread.
class PicView final : public QWidget {
    Q_OBJECT

public:
    explicit PicView(QWidget& mainWindow);
    ~PicView() override;
    PicView(const PicView&) = delete;
    PicView& operator=(const PicView&) = delete;

    /// The room that a picture has at this place of the screen, in device-independent pixels: what lies to the right
    /// and below, but never less than half of the screen.
    QSize Room() const;

    /// Shows a picture, or the sentence why there is none, and takes its size.
    void Take(const QString& fullName, const LoadedPicture& picture);

signals:
    void CloseClicked();
    void Closed();  ///< by the title bar, or with the main window

private:
    void closeEvent(QCloseEvent* event) override;
    void ShowStill(const LoadedPicture& picture);
    void Play(const QString& fullName, const LoadedPicture& picture);
    void ShowFrame();
    void ShowSentence(PictureFault fault);

    std::unique_ptr<Ui::PicView> Form;
    QFile File;  ///< of the moving picture
    std::unique_ptr<QMovie> Movie;
    QSize MovieSize;  ///< in device-independent pixels
};
