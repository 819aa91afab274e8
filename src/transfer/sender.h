#pragma once

#include "transfer/batch.h"

#include <QAbstractButton>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <cstdint>
#include <functional>

/// Sends files: the drop on the remote list, the run over its names, and what follows each sent file.
/// User-interface thread.
class Sender final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        ListBox& lstRemoteFiles;
        ListBox& List1;           ///< the local files
        QAbstractButton& Check1;  ///< "Disconnect when done."
    };

    Sender(Controls controls, TransferTools& tools, std::function<void()> beep);

    void lstRemoteFiles_DragDrop(QWidget* source);
    void Image1_Click();  ///< sends the selected files without a drag

    /// Sends files of this machine from wherever they lie, each under its own name. What is no file is told at the
    /// end, in one sentence; the others are sent.
    void lstRemoteFiles_FilesDropped(const QList<QUrl>& files);

    /// Sends the first TransferCount names from the current folder, one after another, and asks for a listing.
    /// A blank name ends the run. Always returns 0. Throws ProgramEnding.
    std::int32_t PutFiles();

    /// What follows a sent file. Throws ProgramEnding.
    void FinishSend();

private:
    bool MayDrop();
    void SendSelection();
    void SendFiles(const QList<QUrl>& files);
    void SendAll(const QStringList& paths);
    bool SendOne(Batch& batch, const QString& path, const QString& name);
    void TellNotSent(const QStringList& names);
    bool MaySend(const QString& name);
    bool HasRemote(const QString& name) const;

    Controls Form;
    TransferTools& Tools;
    std::function<void()> Beep;
};
