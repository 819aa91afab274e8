#pragma once

#include "base/run_time_error.h"
#include "inet/inet.h"

#include <QLabel>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <cstdint>

class BusyPointer;

/// The maker's messages: a small text file from the maker's web site, whose lines are shown one after another, three
/// times over. User-interface thread.
class MessageTicker final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        Inet& Inet3;
        QTimer& Timer5;  ///< fetches
        QTimer& Timer6;  ///< shows the next line
        BusyPointer& Pointer;
        ErrorRecord& Errors;
        QString ProgramFolder;  ///< the copy, msg.txt, lies there
        QString Address;        ///< of the message file
    };

    /// `lblAds` shows the lines.
    MessageTicker(QLabel& lblAds, Tools tools);

    /// Fetches the messages and begins to show them from the start.
    void mnuMesgUpdate_Click();

    /// Fetches the messages; they begin to show once they are here. Ticks during a fetch do nothing.
    void Timer5_Timer();

    void Timer6_Timer();

private:
    void Fetch();
    void Arrived(const Inet::Download& download);
    void KeepCopy(const QByteArray& bytes) const;
    void ReadCopy();
    void EndFetch();
    void ShowLine();
    QString CopyPath() const;

    QLabel& lblAds;
    Tools Use;
    QStringList MessageLines;        ///< the first line is line 1
    std::int16_t MessageCount = 0;   ///< how many there are
    std::int16_t MessageIndex = 0;   ///< of the line on show; 0 before the first
    std::int16_t MessagePasses = 0;  ///< completed passes over the lines
    bool Fetching = false;
};
