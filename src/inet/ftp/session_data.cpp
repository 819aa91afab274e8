#include "inet/ftp/data_address.h"
#include "inet/ftp/session.h"

#include <algorithm>
#include <utility>

namespace Ftp {

namespace {

constexpr int LoggedIn = 230;        // RFC 959, 4.2.2
constexpr int ServiceClosing = 421;  // the same
constexpr int CannotConnect = 425;   // the same
constexpr int NotLoggedIn = 530;     // the same

bool IsReachableByIpv4(const Endpoint& peer)
{
    return peer.address().is_v4() || peer.address().to_v6().is_v4_mapped();
}

std::string PassiveLine(DataWay way)
{
    return way == DataWay::Extended ? "EPSV" : "PASV";
}

}  // namespace

/// The ways that may lead to data, at least one, in the order in which they are tried.
std::vector<DataWay> Session::Ways() const
{
    std::vector<DataWay> all{DataWay::Extended};
    if (IsReachableByIpv4(Control->Peer())) all.push_back(DataWay::Passive);
    if (!Control->Local().is_unspecified() && !WithoutActive) all.push_back(DataWay::Active);
    const DataWay known = Book->Find(Where.Host, Where.Port);
    std::stable_partition(all.begin(), all.end(), [known](DataWay way) { return way == known; });
    std::vector<DataWay> left;
    std::copy_if(all.begin(), all.end(), std::back_inserter(left),
                 [this](DataWay way) { return !Can.Failed.contains(way); });
    return left.empty() ? all : left;
}

// EPSV works for both kinds of addresses and through translators of addresses; PASV is what older servers know; that
// the server connects to us is for networks where nothing else is let through. Each way that is waited for in vain has
// its share of one time-out.
Task<std::shared_ptr<Wire>> Session::OpenData()
{
    Inbound.reset();
    Wasted = Milliseconds(0);
    const std::vector<DataWay> ways = Ways();
    Failure told{};
    for (std::size_t at = 0; at < ways.size(); ++at) {
        const DataWay way = ways[at];
        Failure failure{};
        try {
            const Milliseconds left = How.Limit - Wasted;
            Control->SetLimit(left);
            std::shared_ptr<Wire> wire = co_await OpenBy(way, left / static_cast<int>(ways.size() - at));
            Control->SetLimit(How.Limit);
            co_return wire;
        } catch (const Failure& thrown) {
            failure = Why.Explain(thrown);
        }
        Control->SetLimit(How.Limit);
        const bool isRefused = failure.Kind == Failure::Refused;
        const bool isOver = failure.Code == ServiceClosing || failure.Code == NotLoggedIn;
        if (isOver || (!isRefused && !Control->IsAlive()) || Why.IsInterrupted()) throw Failure(failure);
        // The command that waits for this connection at the server cannot be taken back.
        if (!isRefused && Control->IsAhead()) throw Failure(failure);
        Can.Failed.insert(way);
        if (way != DataWay::Active || at == 0) told = failure;
    }
    throw Failure(told);
}

Task<std::shared_ptr<Wire>> Session::OpenBy(DataWay way, Milliseconds share)
{
    if (way == DataWay::Active) co_return co_await OfferPort(share);
    const int port = co_await AskForPort(way);
    std::shared_ptr<Wire> wire = co_await TryPort(port, share);
    Can.PassiveWorked = true;
    Book->Note(Where.Host, Where.Port, way);
    co_return wire;
}

// Only the port is the server's choice: the connection goes to where the control connection leads.
Task<int> Session::AskForPort(DataWay way)
{
    const bool ahead = Control->IsAhead();
    Reply reply = co_await Control->Expect(PassiveLine(way));
    if (ahead && reply.Code == LoggedIn) reply = co_await Control->HearInstead();
    const std::optional<int> port = way == DataWay::Extended ? ExtendedPort(reply) : PassivePort(reply);
    if (!port) throw Failure{Failure::Protocol, ResponseError, "The server offers no port for the data."};
    // Nobody would find data there, but a greeting.
    if (*port == Control->Peer().port())
        throw Failure{Failure::Protocol, ResponseError, "The server offers no port for the data but its own."};
    co_return *port;
}

Task<std::shared_ptr<Wire>> Session::TryPort(int port, Milliseconds share)
{
    std::shared_ptr<Wire> wire = Net.NewWire();
    const Milliseconds begun = Time.Now();
    Guard guard(Why, Time, *wire, share);
    try {
        co_await wire->Connect(Endpoint(Control->Peer().address(), static_cast<std::uint16_t>(port)));
    } catch (const Failure&) {
        Wasted += Time.Now() - begun;
        if (Wasted < How.Limit && !Why.IsCancelled()) guard.Forgive();
        throw;
    }
    co_return wire;
}

// That the server will connect is known only once it does, when the command that needs the connection is given.
Task<std::shared_ptr<Wire>> Session::OfferPort(Milliseconds share)
{
    std::shared_ptr<InboundWire> wire = std::exchange(Prepared, nullptr);
    if (!wire) wire = OpenPort();
    std::string line = wire->Line();
    (void)co_await Control->Expect(std::move(line));
    Inbound = wire;
    InboundShare = share;
    co_return wire;
}

/// A port of ours. Throws Failure.
std::shared_ptr<InboundWire> Session::OpenPort() const
{
    const auto note = [book = Book, host = Where.Host, port = Where.Port] { book->Note(host, port, DataWay::Active); };
    return std::make_shared<InboundWire>(Net, Control->Local(), Control->Peer().address(), note);
}

/// Whether a command failed because the server did not connect to us, and there are other ways.
bool Session::MayTryOtherWay(const Failure& failure) const
{
    if (!Inbound || Inbound->HasArrived() || Why.IsCancelled() || !Control) return false;
    if (failure.Kind != Failure::Connection && failure.Code != CannotConnect && !Why.IsInterrupted()) return false;
    const std::vector<DataWay> ways = Ways();
    return !ways.empty() && !(ways.size() == 1 && ways.front() == DataWay::Active);
}

// The command goes with them only where the connection that it needs will surely come about.
std::vector<std::string> Session::LinesBefore(char type, const std::string& sized, std::string command)
{
    std::vector<std::string> lines;
    if (Type != type) lines.push_back(std::string("TYPE ") + type);
    const DataWay way = Ways().front();
    const bool hasCalled = Inbound && Inbound->HasArrived();
    if (way == DataWay::Active && (!hasCalled || !MaySendAhead())) return lines;
    if (way == DataWay::Active) {
        try {
            Prepared = OpenPort();
        } catch (const Failure&) {
            return lines;  // told when it is tried again
        }
        lines.push_back(Prepared->Line());
    } else {
        lines.push_back(PassiveLine(way));
    }
    if (!sized.empty() && Can.Size) lines.push_back("SIZE " + sized);
    if (way == DataWay::Active || Can.PassiveWorked) lines.push_back(std::move(command));
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
    if (!Control->AreFirstAhead(lines)) co_return;
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(Control->CountAhead()));
    if (!lines.empty()) co_await Control->SendAhead(std::move(lines));
}

// While this side gets ready for the next file the server makes its port.
Task<> Session::AskForNextPort()
{
    if (!How.MoreToCome || !MayAskForNextPort()) co_return;
    try {
        std::vector<std::string> lines(1, PassiveLine(Ways().front()));
        co_await Control->SendAhead(std::move(lines));
        PortAsked = Time.Now();
    } catch (const Failure&) {
        // The next command will find the connection closed.
    }
}

bool Session::MayAskForNextPort() const
{
    return MaySendAhead() && Can.PassiveWorked && Ways().front() != DataWay::Active;
}

// What a file needs, asked for in passing: the port, and the type in front of it as a transfer will ask for it.
void Session::GetReady()
{
    if (!Ready || !Control || !Control->IsAlive() || Control->IsAhead() || !MayAskForNextPort()) return;
    std::vector<std::string> lines;
    if (Type != 'I') lines.emplace_back("TYPE I");
    lines.push_back(PassiveLine(Ways().front()));
    Control->SendAheadInPassing(lines);
    if (!Control->IsAhead()) return;
    if (lines.size() > 1) Type = Unknown;
    PortAsked = Time.Now();
}

// A port that has been open for long may be closed by now, and only files are in need of it. What its reply says of the
// session's end the next command is to find out.
Task<> Session::GiveUpPort(bool isForFile)
{
    constexpr Milliseconds PortKeeps = std::chrono::seconds(20);
    if (!Control || !Control->IsAlive() || !Control->IsAhead()) co_return;
    if (isForFile && Time.Now() - PortAsked < PortKeeps) co_return;
    Control->SetLimit(How.Limit);
    try {
        co_await Control->GiveUpAhead();
    } catch (const Failure&) {
        if (Why.IsInterrupted()) throw;
    }
    if (!Control->IsAlive()) CloseConnection();
}

}  // namespace Ftp
