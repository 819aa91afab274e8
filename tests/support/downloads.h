#pragma once

#include "inet/transfer_component.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

/// A transfer component that fetches one thing after the other, with a current folder of its own.
class Downloads {
public:
    static constexpr int Patience = 60'000;  // milliseconds: far beyond what anything here may take

    Downloads()
    {
        QDir::setCurrent(Folder.path());
        Spy = std::make_unique<QSignalSpy>(Component.get(), &Inet::StateChanged);
    }

    ~Downloads() { QDir::setCurrent(Before); }

    Downloads(const Downloads&) = delete;
    Downloads& operator=(const Downloads&) = delete;

    void Begin(const QString& address)
    {
        From = Spy->size();
        Answers = 0;
        Component->OpenURL(address, Inet::ByteArray, [this](const Inet::Download& download) {
            Got = download;
            ++Answers;
        });
    }

    /// Waits until the running one has ended.
    bool Finish()
    {
        return QTest::qWaitFor([this] { return !Component->StillExecuting(); }, Patience);
    }

    /// Fetches to the end. Arrived false, code -1: it never ended, or told its end not once.
    Inet::Download Fetch(const QString& address)
    {
        Begin(address);
        if (!Finish() || Answers != 1 || States().count(Inet::Error) > 1) return {false, {}, 0, -1, "no end"};
        return Got;
    }

    /// Executes to the end and returns its states.
    QList<int> Do(const QString& operation)
    {
        From = Spy->size();
        Component->Execute(Component->URL(), operation);
        return Finish() ? States() : QList<int>();
    }

    /// Of the command begun last.
    QList<int> States() const
    {
        QList<int> states;
        for (qsizetype i = From; i < Spy->size(); ++i) states << Spy->at(i).first().toInt();
        return states;
    }

    QByteArray AllChunks()
    {
        QByteArray bytes;
        for (QString chunk = Component->GetChunk(1000, Inet::ByteArray); !chunk.isEmpty();
             chunk = Component->GetChunk(1000, Inet::ByteArray)) {
            bytes += chunk.toLatin1();
        }
        return bytes;
    }

    /// Names in the current folder, hidden ones included.
    QStringList Files() const
    {
        return QDir(Folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QByteArray File(const QString& name) const
    {
        QFile file(Folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Ends the component, as the end of the program does.
    void Leave()
    {
        Spy.reset();
        Component.reset();
    }

    QTemporaryDir Folder;
    std::unique_ptr<TransferComponent> Component = std::make_unique<TransferComponent>();
    Inet::Download Got;  ///< what the last one ended with
    int Answers = 0;     ///< how often it ended

private:
    QString Before = QDir::currentPath();
    std::unique_ptr<QSignalSpy> Spy;
    qsizetype From = 0;
};
