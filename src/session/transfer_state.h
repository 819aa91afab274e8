#pragma once

#include <QString>
#include <QStringList>

/// What the command now running is, for the one who reacts to its completion.
enum OperationKinds {
    ListingKind = 0,  ///< also every command whose completion must refresh the remote list
    SendKind = 1,
    ReceiveKind = 2,
    EraseKind = 3,
    CloseKind = 4,
    TimeOutKind = 5,  ///< understood, never set
};

/// What the issuers of commands and those who react to their completion hand to each other.
/// A wait lets other handlers run, so nothing here stays the same across one. User-interface thread.
struct TransferState {
    int OperationKind = ListingKind;
    bool ListingExpected = false;    ///< the command now running is LS or DIR: its reply is a listing
    int ListingNumber = 0;           ///< counts listing requests: one that is overtaken by a newer stops filling
    bool ReceiveInProgress = false;  ///< from a receive command until it completes, fails or is reset
    bool SendInProgress = false;     ///< the same for a send
    QString CurrentFileName;         ///< the file in hand, in double quotes
    bool SkipListing = false;        ///< a completing command of kind 0 is not taken for a listing
    QString ResponseMessage;         ///< empty on entry to and exit from ReactToResponse

    bool Closing = false;   ///< a hang-up waits for the component
    QString CurrentSite;    ///< the trimmed address of the session
    QString CurrentUrl;     ///< the same without one trailing line break or blank
    int SessionNumber = 0;  ///< counts connects and hang-ups: a batch ends when it has changed

    QStringList TransferNames;  ///< the names of one batch; the first is at index 0
    int TransferCount = 0;      ///< how many of them count for this run
    int SelectedCount = 0;      ///< how many entries the last drop held
    int FilesDone = 0;          ///< files of this run that have completed
    int BatchesRunning = 0;     ///< runs on their way; more than one when a drop came during a wait of another

    bool EntryChosen =
        false;             ///< a left press has chosen an entry of the remote list; the drop that follows is no drag
    QString RemoteFolder;  ///< kept as a record of the last move
};
