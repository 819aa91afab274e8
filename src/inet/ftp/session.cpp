#include "inet/ftp/session.h"

#include "inet/ftp/data_address.h"

#include <exception>
#include <utility>

namespace Ftp {

namespace {

constexpr int AccountWanted = 332;   // RFC 959, 4.2.2
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
        if (!Ready || !Control->IsAlive() || !LeavesSessionAsItWas(*failure)) CloseConnection();
        outcome.Code = failure->Code;
        outcome.Text = Without(Where.Password, std::move(failure->Text));
        outcome.Reply.clear();
        co_return outcome;
    }
    outcome.Good = true;
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

Task<std::string> Session::Run(Operation operation)
{
    if (!std::holds_alternative<Close>(operation)) {
        if (!Control || !Control->IsAlive()) co_await Connect();
        Begin();
    }
    std::string asked = co_await std::visit([this](auto& one) { return Do(std::move(one)); }, operation);
    if (!std::holds_alternative<Close>(operation)) Tell.State(ResponseReceived);
    co_return asked;
}

Task<std::string> Session::RunFetch(std::string path, std::filesystem::path file)
{
    co_await Connect();
    Begin();
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
}

void Session::CloseConnection()
{
    Control.reset();
    Ready = false;
}

Task<> Session::Connect()
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
    std::shared_ptr<Wire> wire = co_await Reach(std::move(endpoints));
    Tell.State(Connected);
    Control = std::make_unique<ControlConnection>(std::move(wire), Net, Why, Time, How.Limit);
    Can = {};
    Type = 'A';
    co_await LogIn();
    co_await EnterFolders();
    Ready = true;
}

// One address after the other; each has its share of the time that is left for all of them.
Task<std::shared_ptr<Wire>> Session::Reach(std::vector<Endpoint> endpoints)
{
    const Milliseconds end = Time.Now() + How.Limit;
    Failure failure{Failure::Connection, NameError, "The name of the server has no address."};
    for (std::size_t number = 0; number < endpoints.size(); ++number) {
        const std::shared_ptr<Wire> wire = Net.NewWire();
        const Milliseconds share = (end - Time.Now()) / static_cast<int>(endpoints.size() - number);
        Guard guard(Why, Time, *wire, share);
        try {
            co_await wire->Connect(endpoints[number]);
            co_return wire;
        } catch (const Failure& thrown) {
            failure = Why.Explain(thrown);
        }
        if (Why.IsCancelled()) break;
        guard.Forgive();
    }
    throw Failure(failure);
}

Task<> Session::LogIn()
{
    const Reply greeting = co_await Control->HearFinal();
    if (IsBad(greeting)) throw RefusalOf(greeting);
    std::string user = "USER " + (Where.User.empty() ? "anonymous" : Where.User);
    Reply reply = co_await Control->Say(std::move(user));
    if (reply.KindOf() == Reply::NeedMore && reply.Code != AccountWanted) {
        const bool anonymous = Where.User.empty() && Where.Password.empty();
        std::string password = "PASS " + (anonymous ? "anonymous@example.com" : Where.Password);
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
        std::string command = name.empty() ? "CDUP" : "CWD " + name;
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

// EPSV (RFC 2428) works for both kinds of addresses and through translators of addresses; PASV is what older servers
// know. Only the port is the server's choice: the connection goes to where the control connection leads.
Task<std::shared_ptr<Wire>> Session::OpenData()
{
    const bool canFallBack = IsReachableByIpv4(Control->Peer());
    Failure failure{};
    if (Can.ExtendedPassive) {
        try {
            const Reply reply = co_await Control->Expect("EPSV");
            const std::optional<int> port = ExtendedPort(reply);
            if (!port) throw Failure{Failure::Protocol, ResponseError, "The server offers no port for the data."};
            co_return co_await TryPort(*port, canFallBack ? How.Limit / 2 : How.Limit);
        } catch (const Failure& thrown) {
            failure = Why.Explain(thrown);
        }
        if (!canFallBack || Why.IsInterrupted() || failure.Code == ServiceClosing) throw Failure(failure);
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
    co_return wire;
}

}  // namespace Ftp
