#pragma once

#include "base/run_time_error.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <functional>

class ActivityLog;
class Asker;
class BusyPointer;
class Commands;
class Inet;
class ListBox;
class NameOptions;
class QAbstractButton;
class StatusLine;
class Waits;
struct Options;
struct TransferState;

/// What receiving and sending work with. Everything referred to outlives them.
struct TransferTools {
    Inet& Inet1;  ///< the main session
    Commands& Session;
    TransferState& State;
    Waits& Pause;
    Options& Chosen;
    const NameOptions& Names;
    StatusLine& Status;
    ActivityLog& Log;
    BusyPointer& Pointer;
    Asker& Questions;
    ErrorRecord& Errors;
    std::function<void()> HangUp;      ///< as the hang-up button does
    std::function<void()> PlayAlarm;   ///< begins to play the alarm; without sound when there is none
    std::function<void()> ShortDelay;  ///< may throw ProgramEnding
};

/// One run over the names of a drop. Runs may be stacked: a drop during a wait of another run is done first.
/// User-interface thread.
class Batch {
public:
    /// Takes the names that count now; later drops do not touch them.
    explicit Batch(TransferTools& tools);
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    const QStringList& Names() const { return OwnNames; }

    /// The session in which the run began has been closed or replaced.
    bool SessionEnded() const;

    /// Tells the user that the run ends for that reason, and how many of its files it has not begun.
    void TellSessionEnded(qsizetype notBegun);

    /// Tells the user that the Escape key has ended the run.
    void TellCanceled();

    /// Issues the command that transfers the named file; the caller has waited. When the component refuses it, says so
    /// and returns false.
    bool Issue(int operationKind, bool& inProgress, const QString& operation, const QString& name);

private:
    TransferTools& Tools;
    QStringList OwnNames;
    int SessionNumber;
    qsizetype Issued = 0;
};

/// Takes the selected entries of a list, in order, as the names of the next run; entries already in TransferNames
/// behind them stay. The counters begin anew, with the files that runs still on their way have not finished yet.
/// Returns how many entries were selected.
int CollectSelection(const ListBox& source, TransferState& state, bool trimmed);

/// The same with names that are selected nowhere.
void CollectNames(const QStringList& names, TransferState& state);

/// A name as it stands in an operation text.
QString Quoted(const QString& name);

/// Counts a file that has been transferred. After the last one of all runs it plays the alarm and hangs up, where the
/// option and Check1 ("Disconnect when done.") wish it, and begins counting anew.
void CountFinishedFile(TransferTools& tools, QAbstractButton& check1);

/// Asks whether a file that exists already may be overwritten.
bool AskToOverwrite(TransferTools& tools, const QString& question);

/// Whether two names are the same but for case and blanks at their ends.
bool SameName(QStringView left, QStringView right);
