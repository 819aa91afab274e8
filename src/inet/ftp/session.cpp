#include "inet/ftp/session.h"

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

Session::Session(Network& network, Clock& clock, Observer observer, std::shared_ptr<DataWayBook> book)
    : Net(network), Time(clock), Tell(std::move(observer)), Safe(network, Why, clock, Tell.Ask),
      Book(book ? std::move(book) : std::make_shared<DataWayBook>())
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
    WithoutActive = false;
    Wasted = Milliseconds(0);
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
    Prepared.reset();
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
// on a new connection, where nobody can have carried it out already. A server that cannot cope with lines sent ahead
// gets them one at a time, on a new connection as well. And one that does not connect to us is asked for a port.
Task<std::string> Session::Run(Operation operation)
{
    if (std::holds_alternative<Close>(operation)) co_return co_await Do(Close{});
    Reused = false;
    for (;;) {
        try {
            Operation copy = operation;
            co_return co_await RunOnce(std::move(copy));
        } catch (const Failure& failure) {
            if (!MayGoOn(failure, Reused && MayTryAnew(failure, operation))) throw;
        }
    }
}

/// Whether a failed command is tried once more, for each reason once; makes everything ready for it. What was waited
/// for in vain is taken off the time-out: however often a command is tried, a silent server costs it one.
bool Session::MayGoOn(const Failure& failure, bool closed)
{
    const bool uncalled = !closed && MayTryOtherWay(failure);
    const bool blamed = !closed && !uncalled && IsFaultOfAhead(failure);
    if (!closed && !uncalled && !blamed) return false;
    if (Why.IsInterrupted()) Wasted += uncalled ? InboundShare : Control->Patience();
    if (Wasted >= How.Limit) return false;
    How.Limit -= std::exchange(Wasted, Milliseconds(0));
    Why.ForgiveTimeOut();
    if (blamed) OneAtATime = true;
    if (uncalled) WithoutActive = true;
    if (!uncalled || failure.Kind != Failure::Refused) CloseConnection();
    return true;
}

Task<std::string> Session::RunOnce(Operation operation)
{
    Reused = false;
    co_await GiveUpPort(std::holds_alternative<Receive>(operation) || std::holds_alternative<Ftp::Send>(operation));
    Reused = co_await IsStillThere();
    if (!Reused) {
        CloseConnection();
        std::string listing;
        if (std::holds_alternative<ListFull>(operation)) listing = "LIST";
        if (std::holds_alternative<ListNames>(operation)) listing = "NLST";
        co_await Connect(std::move(listing));
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
    const Milliseconds wait = std::min(ShortWait, How.Limit / 4);
    Control->SetLimit(wait);
    try {
        const Reply reply = co_await Control->Say("NOOP");
        co_return Control->IsAlive() && reply.Code != NotLoggedIn;
    } catch (const Failure&) {
        if (Why.IsCancelled()) throw;
        if (Why.IsInterrupted()) How.Limit -= wait;
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
    for (;;) {
        try {
            co_return co_await FetchOnce(path, file);
        } catch (const Failure& failure) {
            if (!MayGoOn(failure, false)) throw;
        }
    }
}

Task<std::string> Session::FetchOnce(std::string path, std::filesystem::path file)
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
    Inbound.reset();
    Prepared.reset();
    Ready = false;
    Can = {};
    Type = 'A';
    Why.Rest();
}

// `listing` is the command that will be given once the working folder is reached, where it is one for a listing.
Task<> Session::Connect(std::string listing)
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
    bool loggedIn = co_await TryLogIn(std::move(wire), listing);
    while (!loggedIn) {
        wire = co_await ConnectToFirst(Net, Why, Time, How.Limit, endpoints);
        loggedIn = co_await TryLogIn(std::move(wire), listing);
    }
    co_await EnterFolders();
    Ready = true;
}

// A server may lose patience while the user looks at its certificate; then it is called once more.
Task<bool> Session::TryLogIn(std::shared_ptr<Wire> wire, std::string listing)
{
    wire = Safe.WrapControl(std::move(wire), Where.Host, Where.Safety);
    Control = std::make_unique<ControlConnection>(std::move(wire), Net, Why, Time, How.Limit);
    Control->SetUnaskedListener([this](const Reply& reply) {
        Tell.Remark("The server said unasked: " + std::to_string(reply.Code) + ' ' + reply.Text());
    });
    Can = {};
    Type = 'A';
    try {
        co_await LogIn(std::move(listing));
    } catch (const Failure& failure) {
        if (!Safe.HasAsked() || failure.Kind != Failure::Connection || Why.IsInterrupted()) throw;
        co_return false;
    }
    co_return true;
}

Task<> Session::LogIn(std::string listing)
{
    std::vector<std::string> ahead;
    if (!listing.empty()) ahead = LinesBefore('A', {}, std::move(listing));
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

}  // namespace Ftp
