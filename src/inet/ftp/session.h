#pragma once

#include "inet/ftp/control_connection.h"
#include "inet/ftp/data_ends.h"
#include "inet/ftp/data_way.h"
#include "inet/ftp/guard.h"
#include "inet/ftp/inbound_wire.h"
#include "inet/ftp/operation.h"
#include "inet/ftp/progress.h"
#include "inet/ftp/proxy_address.h"
#include "inet/ftp/tls_session.h"
#include "inet/ftp/transfer.h"
#include "inet/ftp/wire.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Ftp {

/// Where a session leads and who visits.
struct Target {
    std::string Host;
    std::uint16_t Port = 21;
    std::string User;      ///< empty: anonymous
    std::string Password;  ///< sent to this target and nowhere else
    std::string Path;      ///< entered after log-in; empty: where the server puts the user
    Protection Safety = Protection::None;
    Proxy Via = {};  ///< the network's business, but another road means another session
    bool operator==(const Target&) const = default;
};

/// How the commands of a session are carried out.
struct Manner {
    Milliseconds Limit = std::chrono::seconds(30);  ///< bounds every wait for progress
    bool ListingLineHelp = true;                    ///< a refused listing line is tried once more by its name
    bool MoreToCome = false;                        ///< another file follows this one, in the same direction
};

/// What is known of the size of a transfer that went well.
struct Confirmation {
    std::uint64_t Bytes = 0;  ///< received or sent
    bool BySize = false;      ///< the server's SIZE says the same
};

/// How a command ended.
struct Outcome {
    bool Good = false;
    int Code = 0;       ///< the three digits of the reply that decided, or an Internet error number
    std::string Text;   ///< the server's text, or a plain sentence; never holds the password
    std::string Reply;  ///< what the command asked for: a listing, a size, a folder
    std::optional<Confirmation> Transferred{};  ///< of a file that was received or sent
};

/// What a session tells while it works; called on the transfer thread.
struct Observer {
    std::function<void(int)> State;           ///< the numbers of Inet::State, 1 to 10
    std::function<void(std::string)> Remark;  ///< one line
    ProgressMeter::Listener Progress{};       ///< of a file that is received or sent
    TlsSession::Asking Ask{};                 ///< about certificates; the answer comes by Session::Answer
};

/// One FTP session: connects, logs in and carries out one operation after the other (RFC 959).
///
/// A refusal leaves the session as it was. Anything else that goes wrong closes the connection, and the next operation
/// connects anew, into the same working folder; so does one that finds the connection closed by the server since the
/// last. Names are bytes; a server that can is asked to speak UTF-8 once a name needs it. One operation at a time;
/// transfer thread only.
class Session {
public:
    /// `book` remembers the ways to the servers' data; without one the session remembers for itself.
    Session(Network& network, Clock& clock, Observer observer, std::shared_ptr<DataWayBook> book = {});
    ~Session();

    /// Carries out an operation, connecting first where there is no connection. Local names are looked for in
    /// `folder`. Never throws.
    Task<Outcome> Perform(Target target, Manner manner, Operation operation, std::filesystem::path folder);

    /// Fetches the file at the target's path into `file`, or into memory when that is empty, on a connection of its
    /// own that ends with it.
    Task<Outcome> Fetch(Target target, Manner manner, std::filesystem::path file = {});

    /// Asks for what the next file will need, for one will probably be received or sent soon. Returns at once; where
    /// nothing can be gained, or the session is not open, nothing happens. Not while an operation runs.
    void GetReady();

    /// Ends the running operation, or the one that is about to begin; its Perform returns soon.
    void Cancel();

    /// The user's answer to the question of this number.
    void Answer(unsigned number, bool accepted) { Safe.Answer(number, accepted); }

    /// Closes the connection at once and forgets the working folder.
    void Drop();

    /// Closes the connection at once; the next operation connects anew, into the same working folder. Not while an
    /// operation runs.
    void Disconnect() { CloseConnection(); }

    bool IsConnected() const { return Control != nullptr; }

private:
    struct Capabilities {
        std::set<DataWay> Failed;    ///< the ways to a data connection that have led nowhere
        bool PassiveWorked = false;  ///< a data connection to a port of the server has been made
        bool LinesAsNames = true;    ///< no listing line has been refused as a name yet
        bool Utf8Asked = false;      ///< the server has been asked to speak UTF-8, or cannot
        bool Size = true;            ///< SIZE has not been called unknown yet
        bool SizeWorked = false;     ///< SIZE has been answered with a figure
    };

    // Connecting
    Task<> Connect(std::string listing);
    Task<bool> IsStillThere();
    bool MayTryAnew(const Failure& failure, const Operation& operation) const;
    Task<bool> TryLogIn(std::shared_ptr<Wire> wire, std::string listing);
    Task<> LogIn(std::string listing);
    Task<> EnterFolders();
    void CloseConnection();

    // Data connections
    Task<std::shared_ptr<Wire>> OpenData();
    std::vector<DataWay> Ways() const;
    Task<std::shared_ptr<Wire>> OpenBy(DataWay way, Milliseconds share);
    Task<int> AskForPort(DataWay way);
    Task<std::shared_ptr<Wire>> TryPort(int port, Milliseconds share);
    Task<std::shared_ptr<Wire>> OfferPort(Milliseconds share);
    std::shared_ptr<InboundWire> OpenPort() const;
    bool MayTryOtherWay(const Failure& failure) const;
    Task<> SetType(char type);

    // Operations; each returns what was asked for
    Task<std::string> Do(ListNames);
    Task<std::string> Do(ListFull);
    Task<std::string> Do(ChangeFolder operation);
    Task<std::string> Do(FolderUp);
    Task<std::string> Do(Receive operation);
    Task<std::string> Do(Send operation);
    Task<std::string> Do(Delete operation);
    Task<std::string> Do(Rename operation);
    Task<std::string> Do(MakeFolder operation);
    Task<std::string> Do(RemoveFolder operation);
    Task<std::string> Do(Size operation);
    Task<std::string> Do(WorkingFolder);
    Task<std::string> Do(Close);

    // Encoding
    Task<bool> SpeakUtf8();
    Task<> SpeakUtf8For(std::string name);
    Task<std::string> ListInUtf8(std::string command);

    // Lines that can be sent before the ones ahead of them are answered
    std::vector<std::string> LinesBefore(char type, const std::string& sized, std::string command);
    bool MaySendAhead() const;
    Task<> SendAhead(std::vector<std::string> lines);
    Task<> AskForNextPort();
    bool MayAskForNextPort() const;
    Task<> GiveUpPort(bool isForFile);

    Task<std::string> Run(Operation operation);
    Task<std::string> RunOnce(Operation operation);
    Task<std::string> RunFetch(std::string path, std::filesystem::path file);
    Task<std::string> FetchOnce(std::string path, std::filesystem::path file);
    bool MayGoOn(const Failure& failure, bool closed);
    Task<Outcome> Guarded(Task<std::string> work);
    Task<> GetInStep();
    bool IsFaultOfAhead(const Failure& failure) const;
    bool LeavesSessionAsItWas(const Failure& failure) const;
    Task<std::string> List(std::string command);
    std::unique_ptr<Sink> SinkFor(const Receive& operation, const std::string& name) const;
    Task<Reply> ReceiveAs(std::string name, std::unique_ptr<Sink> sink);
    Task<Reply> Retrieve(std::string name, Sink& sink);
    Task<> CheckCut(std::string name, const Transfer& transfer);
    Task<std::optional<std::uint64_t>> AskSize(std::string name);
    Task<std::optional<std::uint64_t>> AskSizeAfterwards(std::string name);
    Task<> CheckReceived(std::string name, const Transfer& transfer, std::optional<std::uint64_t> size);
    Task<> CheckSent(std::string name, const Transfer& transfer);
    Task<Reply> SayWithName(std::string command, std::string text, std::string* accepted);
    void Begin();

    TransferMeans Means() { return {Net, Why, Time, How.Limit, Tell.Progress, &Safe, Inbound, InboundShare}; }

    // Listing lines given as names
    std::optional<std::string> NameInLine(const std::string& text) const;
    std::string FirstChoice(const std::string& text) const;
    void TellSecondTry(const std::string& name) const;

    Network& Net;
    Clock& Time;
    Observer Tell;
    Intent Why;

    Target Where;
    Manner How;
    std::filesystem::path Folder;

    TlsSession Safe;
    std::shared_ptr<DataWayBook> Book;
    std::unique_ptr<ControlConnection> Control;
    bool Ready = false;                 ///< logged in, and in the working folder
    bool Unfinished = false;            ///< a transfer is under way: its replies are still owed
    bool OneAtATime = false;            ///< what was sent ahead to this server has done harm once
    std::optional<Confirmation> Proof;  ///< of the transfer that the running command has made
    bool Reused = false;                ///< the running command goes over a connection that was there before
    bool WithoutActive = false;         ///< the running command has waited in vain for the server to connect
    std::size_t HeardBefore = 0;        ///< replies on it before that command
    std::optional<Reply> Decided;       ///< the reply that counts, where another one came after it
    Capabilities Can;
    std::shared_ptr<InboundWire> Inbound;   ///< the data connection of the running command, where the server makes it
    std::shared_ptr<InboundWire> Prepared;  ///< the next one, where the server is told of it ahead
    Milliseconds InboundShare{0};           ///< of the time-out, for making it
    Milliseconds Wasted{0};                 ///< of the time-out, on data connections that did not come about
    Milliseconds LastUse{0};                ///< when the last operation ended
    Milliseconds PortAsked{0};              ///< when a port was asked for ahead
    char Type = 'A';                        ///< of the server: TYPE A is what a session begins with (RFC 959, 5.1)
    static constexpr char Unknown = 0;      ///< of a type: asked for, but the answer was not heard
    std::vector<std::string> Moves;         ///< changes of folder since log-in; an empty one leads up
    std::string LastListing;                ///< the reply of the last LIST
};

}  // namespace Ftp
