#pragma once

#include "transfer/batch.h"

#include <QAbstractButton>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

/// Receives files: the drops on the local panel, the run over their names, and what follows each received file.
/// User-interface thread.
class Receiver final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        ListBox& lstRemoteFiles;
        ListBox& List1;           ///< the local files
        QAbstractButton& Check1;  ///< "Disconnect when done."
    };

    /// What the local panel does after a file has come.
    struct LocalSteps {
        std::function<void()> RefreshList;
        std::function<void()> RefreshDiskSpace;
    };

    /// `inet2` is the second channel, which GetFiles2 receives on.
    Receiver(Controls controls, TransferTools& tools, Inet& inet2, LocalSteps local);

    void List1_DragDrop(QWidget* source);
    void Dir1_DragDrop(QWidget* source);
    void Image2_Click();  ///< receives the selected lines without a drag

    /// Receives the first TransferCount names into the current folder, one after another, on the main session.
    /// A blank name ends the run. Returns false when the Escape key or the end of the session ended it; the status
    /// line then says so. Throws ProgramEnding.
    bool GetFiles();

    /// Receives names separated by "|" on the second channel; empty ones are passed over. Always returns 0.
    std::int32_t GetFiles2(QString fileList);

    /// What follows a received file. Throws ProgramEnding.
    void FinishReceive();

    /// The full local path of the file being received.
    QString LocalTarget;

private:
    void Dropped(QWidget* source, const QString& announcement);
    void ReceiveSelection(const QString& announcement);
    bool MayReceive(const QString& name);
    std::optional<QString> LocalTwin(const QString& name) const;
    bool HasLocal(const QString& name) const;
    void ReceiveOne(Batch& batch, const QString& name);
    void ReceiveOnSecondChannel(const QString& name);

    Controls Form;
    TransferTools& Tools;
    Inet& Inet2;
    LocalSteps Local;
};
