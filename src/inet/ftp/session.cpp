#include "inet/ftp/session.h"

#include "inet/ftp/data_address.h"
#include "inet/ftp/race.h"

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
    return reply.KindOf() >= Reply::TryLater;
}

bool IsReachableByIpv4(const Endpoint& peer)
{
    return peer.address().is_v4() || peer.address().to_v6().is_v4_mapped();
}

Failure AccountFailure(const Reply& reply)
{
    return {Failure::Refused, reply.Code,
            "The server wants an account name, which Tolvane cannot give: " + reply.Text()};
}

bool IsWordByte(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 || (value >= '0' && value <= '9') || (value >= 'A' && value <= 'Z') ||
           (value >= 'a' && value <= 'z');
}

/// The text with the secret made unreadable. One of a few letters counts only where it stands as a word of its own:
/// anything else would spoil every text that happens to hold them.
std::string Without(const std::string& secret, std::string text)
{
    constexpr std::size_t AnywhereFrom = 4;
    if (secret.empty()) return text;
    const std::string mask = "****";
    for (std::size_t at = text.find(secret); at != std::string::npos; at = text.find(secret, at)) {
        const std::size_t end = at + secret.size();
        const bool inside = (at > 0 && IsWordByte(text[at - 1])) || (end < text.size() && IsWordByte(text[end]));
        if (inside && secret.size() < AnywhereFrom) {
            ++at;
            continue;
        }
        text.replace(at, secret.size(), mask);
        at += mask.size();
    }
    return text;
}

std::string MoveLine(const std::string& name)
{
    return name.empty() ? "CDUP" : "CWD " + name;
}

}  // namespace

Session::Session(Network& network, Clock& clock, Observer observer)
    : Net(network), Time(clock), Tell(std::move(observer))
{
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

Task<Outcome> Session::Fetch(Target target, Manner manner)
{
    Drop();
    std::string path = std::exchange(target.Path, {});
    Where = std::move(target);
    How = manner;
    Outcome outcome = co_await Guarded(RunFetch(std::move(path)));
    Drop();
    co_return outcome;
}

/// The one place where what went wrong becomes a value.
Task<Outcome> Session::Guarded(Task<std::string> work)
{
    Unfinished = false;
    Proof.reset();
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
    if (failure) {
        co_await GetInStep();
        if (!Ready || !Control->IsAlive() || !LeavesSessionAsItWas(*failure)) CloseConnection();
        outcome.Code = failure->Code;
        outcome.Text = Without(Where.Password, std::move(failure->Text));
        outcome.Reply.clear();
        co_return outcome;
    }
    outcome.Good = true;
    outcome.Transferred = Proof;
    if (Control) {
        outcome.Code = Control->Last().Code;
        outcome.Text = Without(Where.Password, Control->Last().Text());
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

// A server that cannot cope with lines sent ahead gets them one at a time, on a new connection.
Task<std::string> Session::Run(Operation operation)
{
    try {
        Operation copy = operation;
        co_return co_await RunOnce(std::move(copy));
    } catch (const Failure& failure) {
        if (!IsFaultOfAhead(failure)) throw;
    }
    OneAtATime = true;
    Why.ForgiveTimeOut();
    CloseConnection();
    co_return co_await RunOnce(std::move(operation));
}

Task<std::string> Session::RunOnce(Operation operation)
{
    if (!std::holds_alternative<Close>(operation)) {
        if (!Control || !Control->IsAlive()) {
            CloseConnection();
            std::vector<std::string> ahead = LinesBefore(operation);
            co_await Connect(std::move(ahead));
        }
        Begin();
    }
    std::string asked = co_await std::visit([this](auto& one) { return Do(std::move(one)); }, operation);
    if (!std::holds_alternative<Close>(operation)) Tell.State(ResponseReceived);
    co_return asked;
}

Task<std::string> Session::RunFetch(std::string path)
{
    co_await Connect({});
    Begin();
    co_await SetType('I');
    MemorySink sink(std::size_t{2} * 1024 * 1024 * 1024);
    const Reply end = co_await Retrieve(std::move(path), sink);
    if (IsBad(end)) throw RefusalOf(end);
    Tell.State(ResponseReceived);
    co_return std::move(sink.Bytes);
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
    std::shared_ptr<Wire> wire = co_await ConnectToFirst(Net, Why, Time, How.Limit, std::move(endpoints));
    Tell.State(Connected);
    Control = std::make_unique<ControlConnection>(std::move(wire), Net, Why, Time, How.Limit);
    co_await LogIn(std::move(ahead));
    co_await EnterFolders();
    Ready = true;
}

Task<> Session::LogIn(std::vector<std::string> ahead)
{
    for (auto move = Moves.rbegin(); move != Moves.rend(); ++move) ahead.insert(ahead.begin(), MoveLine(*move));
    if (!Where.Path.empty()) ahead.insert(ahead.begin(), "CWD " + Where.Path);
    const Reply greeting = co_await Control->HearFinal();
    if (IsBad(greeting)) throw RefusalOf(greeting);
    std::string user = "USER " + (Where.User.empty() ? "anonymous" : Where.User);
    Reply reply = co_await Control->Say(std::move(user));
    if (reply.KindOf() == Reply::NeedMore && reply.Code != AccountWanted) {
        const bool anonymous = Where.User.empty() && Where.Password.empty();
        std::string password = "PASS " + (anonymous ? "anonymous@example.com" : Where.Password);
        ahead.insert(ahead.begin(), password);
        co_await SendAhead(std::move(ahead));
        reply = co_await Control->Say(std::move(password));
    }
    if (reply.Code == AccountWanted) throw AccountFailure(reply);
    if (reply.KindOf() != Reply::Done) throw RefusalOf(reply);
}

// A connection that is made anew leads where the old one had been. When that is not possible any more the way is
// forgotten, so that the next attempt begins where the server puts the user.
Task<> Session::EnterFolders()
{
    std::vector<std::string> moves;
    moves.swap(Moves);
    if (!Where.Path.empty()) {
        std::string command = "CWD " + Where.Path;
        (void)co_await Control->Expect(std::move(command));
    }
    for (const std::string& name : moves) {
        std::string command = MoveLine(name);
        (void)co_await Control->Expect(std::move(command));
    }
    Moves = std::move(moves);
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

Task<> Session::SendAhead(std::vector<std::string> lines)
{
    if (OneAtATime || Control->IsOdd() || lines.size() < 2) co_return;
    if (Control->IsAhead()) {
        if (!Control->IsOnlyAhead(lines.front())) co_return;
        lines.erase(lines.begin());
    }
    co_await Control->SendAhead(std::move(lines));
}

// While this side gets ready for the next file the server makes its port.
Task<> Session::AskForNextPort()
{
    if (!How.MoreToCome || OneAtATime || Control->IsOdd() || !Can.PassiveWorked) co_return;
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
