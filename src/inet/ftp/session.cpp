#include "inet/ftp/session.h"

#include "inet/ftp/data_address.h"
#include "inet/ftp/encoding.h"
#include "inet/ftp/race.h"
#include "inet/ftp/secret.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <utility>

namespace Ftp {

namespace {

constexpr int AccountWanted = 332;   // RFC 959, 4.2.2
constexpr int LoggedIn = 230;        // the same
constexpr int ServiceClosing = 421;  // the same
constexpr int NotLoggedIn = 530;     // the same

// The states that an observer hears of, as the component numbers them.
enum States {
    ResolvingHost = 1,
    HostResolved = 2,
    Connecting = 3,
    Connected = 4,
    Requesting = 5,
    RequestSent = 6,
    ReceivingResponse = 7,
    ResponseReceived = 8,
};

bool IsBad(const Reply& reply)
{
    return reply.KindOf() != Reply::Done;
}

bool IsReachableByIpv4(const Endpoint& peer)
{
    return peer.address().is_v4() || peer.address().to_v6().is_v4_mapped();
}

constexpr const char* SecureOnlyHint =
    "The server seems to want a secure connection: put ftpes:// before its address, or ftps:// for port 990.";

/// Servers have no common way to say so; these are the words that they use.
bool MeansSecureOnly(const Failure& failure)
{
    if (failure.Kind != Failure::Refused) return false;
    std::string text = failure.Text;
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char byte) { return std::tolower(byte); });
    for (const char* word : {"tls", "ssl", "encrypt", "cleartext"})
        if (text.find(word) != std::string::npos) return true;
    return false;
}

std::string MoveLine(const std::string& name)
{
    return name.empty() ? "CDUP" : "CWD " + name;
}

}  // namespace

Session::Session(Network& network, Clock& clock, Observer observer)
    : Net(network), Time(clock), Tell(std::move(observer)), Safe(network, Why, clock, Tell.Ask)
{
    // A server may repeat the password in any text that is told.
    Tell.Remark = [this, tell = std::move(Tell.Remark)](const std::string& line) {
        tell(Without(Where.Password, line));
    };
}

Session::~Session() = default;

Task<Outcome> Session::Perform(Target target, Manner manner, Operation operation, std::filesystem::path folder)
{
    if (target != Where) Drop();
    Where = std::move(target);
    How = manner;
    Folder = std::move(folder);
    co_return co_await Guarded(Run(std::move(operation)));
}

Task<Outcome> Session::Fetch(Target target, Manner manner, std::filesystem::path file)
{
    Drop();
    std::string path = std::exchange(target.Path, {});
    Where = std::move(target);
    How = manner;
    Outcome outcome = co_await Guarded(RunFetch(std::move(path), std::move(file)));
    Drop();
    co_return outcome;
}

/// The one place where what went wrong becomes a value.
Task<Outcome> Session::Guarded(Task<std::string> work)
{
    Unfinished = false;
    Proof.reset();
    Decided.reset();
    Outcome outcome;
    std::optional<Failure> failure;
    try {
        outcome.Reply = co_await std::move(work);
    } catch (const Failure& thrown) {
        failure = Why.Explain(thrown);
    } catch (const std::exception& error) {
        failure = Failure{Failure::Protocol, InternalError, std::string("The command failed: ") + error.what() + '.'};
    }
    if (!failure && Why.IsCancelled()) failure = Why.Explain({});
    Why.Reset();
    LastUse = Time.Now();
    if (failure) {
        co_await GetInStep();
        if (Where.Safety == Protection::None && MeansSecureOnly(*failure)) Tell.Remark(SecureOnlyHint);
        if (!Ready || !Control->IsAlive() || !LeavesSessionAsItWas(*failure)) CloseConnection();
        outcome.Code = failure->Code;
        outcome.Text = Without(Where.Password, failure->Text);
        outcome.Reply.clear();
        co_return outcome;
    }
    outcome.Good = true;
    outcome.Transferred = Proof;
    if (Control) {
        const Reply& last = Decided ? *Decided : Control->Last();
        outcome.Code = last.Code;
        outcome.Text = Without(Where.Password, last.Text());
    }
    co_return outcome;
}

// A refusal is an answer like any other, unless the server has forgotten who we are; what went wrong on this side
// before the server was asked is none of its business. After everything else replies may still be owed, and there is
// no way to get back in step.
bool Session::LeavesSessionAsItWas(const Failure& failure) const
{
    const bool local = failure.Kind == Failure::Request || failure.Kind == Failure::LocalFile;
    return (failure.Kind == Failure::Refused && failure.Code != NotLoggedIn) || (local && !Unfinished);
}

// What was sent ahead of a refused line was carried out or refused as well.
Task<> Session::GetInStep()
{
    if (!Ready || !Control || !Control->IsAlive() || !Control->IsAhead()) co_return;
    try {
        co_await Control->GiveUpAhead();
    } catch (const Failure&) {
        CloseConnection();
    }
    Why.Reset();
}

// A refusal is meant as it is said; only 421 may mean the lines behind the first.
bool Session::IsFaultOfAhead(const Failure& failure) const
{
    if (!Control || OneAtATime || Why.IsCancelled()) return false;
    if (failure.Kind == Failure::Refused) return failure.Code == ServiceClosing && Control->AnsweredAhead() > 1;
    const bool local = failure.Kind == Failure::Request || failure.Kind == Failure::LocalFile;
    return Control->MayBlameAhead() && !local;
}

// A server may close an idle connection just as the next command is on its way to it: that command is given once more,
// on a new connection, where nobody can have carried it out already. And a server that cannot cope with lines sent
// ahead gets them one at a time, on a new connection as well.
Task<std::string> Session::Run(Operation operation)
{
    if (std::holds_alternative<Close>(operation)) co_return co_await Do(Close{});
    Reused = false;
    try {
        Operation copy = operation;
        co_return co_await RunOnce(std::move(copy));
    } catch (const Failure& failure) {
        const bool closed = Reused && MayTryAnew(failure, operation);
        const bool blamed = IsFaultOfAhead(failure);
        if (!closed && !blamed) throw;
        if (!closed) OneAtATime = true;
    }
    Why.ForgiveTimeOut();
    CloseConnection();
    co_return co_await RunOnce(std::move(operation));
}

Task<std::string> Session::RunOnce(Operation operation)
{
    Reused = co_await IsStillThere();
    if (!Reused) {
        CloseConnection();
        std::vector<std::string> ahead = LinesBefore(operation);
        co_await Connect(std::move(ahead));
    }
    Begin();
    HeardBefore = Control->Heard();
    co_await SpeakUtf8For(NamesSent(operation));
    std::string asked = co_await std::visit([this](auto& one) { return Do(std::move(one)); }, operation);
    Tell.State(ResponseReceived);
    co_return asked;
}

// What is silent for long may have been forgotten by something on the way, and then swallows every command: so it is
// asked first, and not waited for as long as a command would be.
Task<bool> Session::IsStillThere()
{
    constexpr Milliseconds LongIdle = std::chrono::seconds(60);
    constexpr Milliseconds ShortWait = std::chrono::seconds(5);
    if (!Control || !Control->IsAlive()) co_return false;
    if (Time.Now() - LastUse < LongIdle) co_return true;
    Control->SetLimit(std::min(ShortWait, How.Limit));
    try {
        const Reply reply = co_await Control->Say("NOOP");
        co_return Control->IsAlive() && reply.Code != NotLoggedIn;
    } catch (const Failure&) {
        if (Why.IsCancelled()) throw;
        Why.ForgiveTimeOut();
    }
    co_return false;
}

bool Session::MayTryAnew(const Failure& failure, const Operation& operation) const
{
    if (!Control || Why.IsInterrupted()) return false;
    const std::size_t answers = Control->Heard() - HeardBefore;
    if (failure.Kind == Failure::Refused) return failure.Code == ServiceClosing && answers == 1;
    const bool mayHaveBeenDone = std::holds_alternative<Delete>(operation) ||
                                 std::holds_alternative<MakeFolder>(operation) ||
                                 std::holds_alternative<RemoveFolder>(operation);
    return failure.Kind == Failure::Connection && answers == 0 && !mayHaveBeenDone;
}

Task<std::string> Session::RunFetch(std::string path, std::filesystem::path file)
{
    co_await Connect({});
    Begin();
    co_await SpeakUtf8For(path);
    co_await SetType('I');
    MemorySink memory(std::size_t{2} * 1024 * 1024 * 1024);
    FileSink stored(file);
    Sink& sink = file.empty() ? static_cast<Sink&>(memory) : stored;
    const Reply end = co_await Retrieve(std::move(path), sink);
    if (IsBad(end)) throw RefusalOf(end);
    sink.Keep();
    Tell.State(ResponseReceived);
    co_return std::move(memory.Bytes);
}

void Session::Begin()
{
    Tell.State(Requesting);
    Control->SetLimit(How.Limit);
    Control->SetSendListener([this] {
        Tell.State(RequestSent);
        Tell.State(ReceivingResponse);
        Control->SetSendListener({});
    });
}

void Session::Cancel()
{
    Why.Cancel();
}

void Session::Drop()
{
    CloseConnection();
    Moves.clear();
    LastListing.clear();
    Where = {};
    OneAtATime = false;
}

void Session::CloseConnection()
{
    Control.reset();
    Ready = false;
    Can = {};
    Type = 'A';
    Why.Rest();
}

// `ahead` is what will be said once the working folder is reached.
Task<> Session::Connect(std::vector<std::string> ahead)
{
    CloseConnection();
    Tell.State(ResolvingHost);
    std::vector<Endpoint> endpoints;
    {
        const std::shared_ptr<Lookup> lookup = Net.NewLookup();
        const Guard guard(Why, Time, *lookup, How.Limit);
        endpoints = co_await lookup->Find(Where.Host, Where.Port);
    }
    Tell.State(HostResolved);
    Tell.State(Connecting);
    std::shared_ptr<Wire> wire = co_await ConnectToFirst(Net, Why, Time, How.Limit, endpoints);
    Tell.State(Connected);
    bool loggedIn = co_await TryLogIn(std::move(wire), ahead);
    while (!loggedIn) {
        wire = co_await ConnectToFirst(Net, Why, Time, How.Limit, endpoints);
        loggedIn = co_await TryLogIn(std::move(wire), ahead);
    }
    co_await EnterFolders();
    Ready = true;
}

// A server may lose patience while the user looks at its certificate; then it is called once more.
Task<bool> Session::TryLogIn(std::shared_ptr<Wire> wire, std::vector<std::string> ahead)
{
    wire = Safe.WrapControl(std::move(wire), Where.Host, Where.Safety);
    Control = std::make_unique<ControlConnection>(std::move(wire), Net, Why, Time, How.Limit);
    Control->SetUnaskedListener([this](const Reply& reply) {
        Tell.Remark("The server said unasked: " + std::to_string(reply.Code) + ' ' + reply.Text());
    });
    Can = {};
    Type = 'A';
    try {
        co_await LogIn(std::move(ahead));
    } catch (const Failure& failure) {
        if (!Safe.HasAsked() || failure.Kind != Failure::Connection || Why.IsInterrupted()) throw;
        co_return false;
    }
    co_return true;
}

Task<> Session::LogIn(std::vector<std::string> ahead)
{
    for (auto move = Moves.rbegin(); move != Moves.rend(); ++move) ahead.insert(ahead.begin(), MoveLine(*move));
    if (!Where.Path.empty()) ahead.insert(ahead.begin(), "CWD " + Where.Path);
    // A name in other letters has a question in front of it.
    if (!std::all_of(ahead.begin(), ahead.end(), IsAscii)) ahead.clear();
    co_await Safe.BeforeGreeting(How.Limit);
    const Reply greeting = co_await Control->HearFinal();
    if (IsBad(greeting)) throw RefusalOf(greeting);
    co_await Safe.AfterGreeting(*Control, How.Limit);
    std::string user = "USER " + (Where.User.empty() ? "anonymous" : Where.User);
    Reply reply = co_await Control->Say(std::move(user));
    if (reply.KindOf() == Reply::NeedMore && reply.Code != AccountWanted) {
        const bool anonymous = Where.User.empty() && Where.Password.empty();
        std::string password = "PASS " + (anonymous ? "anonymous@example.com" : Where.Password);
        ahead.insert(ahead.begin(), password);
        co_await SendAhead(std::move(ahead));
        reply = co_await Control->Say(std::move(password));
    }
    if (IsBad(reply)) throw RefusalOf(reply);
    co_await Safe.AfterLogIn(*Control);
}

// A connection that is made anew leads where the old one had been. When the server refuses that the way is forgotten,
// so that the next attempt begins where the server puts the user; a connection that breaks on the way changes nothing.
Task<> Session::EnterFolders()
{
    const std::vector<std::string> moves = Moves;
    try {
        if (!Where.Path.empty()) {
            co_await SpeakUtf8For(Where.Path);
            std::string command = "CWD " + Where.Path;
            (void)co_await Control->Expect(std::move(command));
        }
        for (const std::string& name : moves) {
            co_await SpeakUtf8For(name);
            std::string command = MoveLine(name);
            (void)co_await Control->Expect(std::move(command));
        }
    } catch (const Failure& failure) {
        if (LeavesSessionAsItWas(failure) && Control->IsAlive()) Moves.clear();
        throw;
    }
}

Task<> Session::SetType(char type)
{
    if (Type == type) co_return;
    std::string command = std::string("TYPE ") + type;
    (void)co_await Control->Expect(std::move(command));
    Type = type;
}

/// What is going to be said first for an operation that begins a session, as far as that is sure.
std::vector<std::string> Session::LinesBefore(const Operation& operation) const
{
    if (std::holds_alternative<ListFull>(operation)) return LinesBefore('A', {}, "LIST");
    if (std::holds_alternative<ListNames>(operation)) return LinesBefore('A', {}, "NLST");
    return {};
}

// The command goes with them only where the port that it needs will surely be one that can be reached.
std::vector<std::string> Session::LinesBefore(char type, const std::string& sized, std::string command) const
{
    std::vector<std::string> lines;
    if (Type != type) lines.push_back(std::string("TYPE ") + type);
    lines.push_back(PassiveLine());
    if (!sized.empty() && Can.Size) lines.push_back("SIZE " + sized);
    if (Can.PassiveWorked) lines.push_back(std::move(command));
    return lines;
}

// Secure servers were seen to mind; what they cost in round trips the handshakes exceed by far.
bool Session::MaySendAhead() const
{
    return Where.Safety == Protection::None && !OneAtATime && !Control->IsOdd();
}

Task<> Session::SendAhead(std::vector<std::string> lines)
{
    if (!MaySendAhead() || lines.size() < 2) co_return;
    if (Control->IsAhead()) {
        if (!Control->IsOnlyAhead(lines.front())) co_return;
        lines.erase(lines.begin());
    }
    co_await Control->SendAhead(std::move(lines));
}

// While this side gets ready for the next file the server makes its port.
Task<> Session::AskForNextPort()
{
    if (!How.MoreToCome || !MaySendAhead() || !Can.PassiveWorked) co_return;
    try {
        std::vector<std::string> lines(1, PassiveLine());
        co_await Control->SendAhead(std::move(lines));
    } catch (const Failure&) {
        // The next command will find the connection closed.
    }
}

// EPSV (RFC 2428) works for both kinds of addresses and through translators of addresses; PASV is what older servers
// know. Only the port is the server's choice: the connection goes to where the control connection leads.
Task<std::shared_ptr<Wire>> Session::OpenData()
{
    const bool canFallBack = IsReachableByIpv4(Control->Peer());
    Failure failure{};
    if (Can.ExtendedPassive) {
        try {
            const bool ahead = Control->IsAhead();
            Reply reply = co_await Control->Expect("EPSV");
            if (ahead && reply.Code == LoggedIn) reply = co_await Control->HearInstead();
            const std::optional<int> port = ExtendedPort(reply);
            if (!port) throw Failure{Failure::Protocol, ResponseError, "The server offers no port for the data."};
            co_return co_await TryPort(*port, canFallBack ? How.Limit / 2 : How.Limit);
        } catch (const Failure& thrown) {
            failure = Why.Explain(thrown);
        }
        if (!canFallBack || Why.IsInterrupted() || failure.Code == ServiceClosing) throw Failure(failure);
        // The command that waits for this connection at the server cannot be taken back.
        if (failure.Kind != Failure::Refused && Control->IsAhead()) throw Failure(failure);
        Can.ExtendedPassive = false;
    }
    const Reply reply = co_await Control->Expect("PASV");
    const std::optional<int> port = PassivePort(reply);
    if (!port) throw Failure{Failure::Protocol, ResponseError, "The server offers no port for the data."};
    co_return co_await TryPort(*port, How.Limit);
}

Task<std::shared_ptr<Wire>> Session::TryPort(int port, Milliseconds limit)
{
    // Nobody would find data there, but a greeting.
    if (port == Control->Peer().port())
        throw Failure{Failure::Protocol, ResponseError, "The server offers no port for the data but its own."};
    std::shared_ptr<Wire> wire = Net.NewWire();
    Guard guard(Why, Time, *wire, limit);
    try {
        co_await wire->Connect(Endpoint(Control->Peer().address(), static_cast<std::uint16_t>(port)));
    } catch (const Failure&) {
        if (limit < How.Limit && !Why.IsCancelled()) guard.Forgive();
        throw;
    }
    Can.PassiveWorked = true;
    co_return wire;
}

}  // namespace Ftp
