#include "inet/ftp/tls_session.h"

#include "inet/ftp/control_connection.h"
#include "inet/ftp/tls_context.h"
#include "inet/ftp/tls_wire.h"

#include <utility>

namespace Ftp {

/// A question that waits for its answer, or for being given up.
class TlsSession::Question final : public Abortable {
public:
    Question(const asio::any_io_executor& executor, Question*& open) : Changed(executor), Place(open) { Place = this; }

    ~Question() override { Place = nullptr; }

    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;

    Task<bool> Wait()
    {
        while (!Verdict) co_await Changed.Wait();
        co_return *Verdict;
    }

    void Answer(bool accepted)
    {
        Verdict = accepted;
        Changed.Wake();
    }

    void Abort() override { Answer(false); }

private:
    Waker Changed;
    Question*& Place;
    std::optional<bool> Verdict;
};

TlsSession::TlsSession(Network& network, Intent& intent, Clock& clock, Asking ask, std::string protocol)
    : Net(network), Why(intent), Time(clock), Ask(std::move(ask)), Spoken(std::move(protocol))
{
}

TlsSession::~TlsSession() = default;

std::shared_ptr<Wire> TlsSession::WrapControl(std::shared_ptr<Wire> wire, std::string host, Protection protection)
{
    Kind = protection;
    Control.reset();
    Fingerprint.clear();
    Asked = false;
    if (Kind == Protection::None) return wire;
    if (!Context) Context = std::make_shared<TlsContext>(Spoken);
    Context->Forget();
    if (host != Host) Accepted.clear();
    Host = std::move(host);
    Control = std::make_shared<TlsWire>(std::move(wire), Net.Executor(), Context);
    if (Kind == Protection::FromStart) Control->BeginTls(Host);
    return Control;
}

Task<> TlsSession::BeforeGreeting(Milliseconds limit)
{
    if (Kind == Protection::FromStart) co_await Secure(limit);
}

// What has come before the handshake counts for nothing after it: the server is not heard any more between its 234
// and the handshake.
Task<> TlsSession::AfterGreeting(ControlConnection& control, Milliseconds limit)
{
    if (Kind != Protection::Upgraded) co_return;
    const Reply reply = co_await control.Say("AUTH TLS");
    if (reply.KindOf() != Reply::Done)
        throw Failure{Failure::Refused, reply.Code, "The server offers no secure connection: " + reply.Text()};
    if (control.HasUnasked())
        throw Failure{Failure::Protocol, SecureChannelError,
                      "Something was sent before the connection was secure, perhaps by somebody else."};
    Control->BeginTls(Host);
    co_await Secure(limit);
}

Task<> TlsSession::Secure(Milliseconds limit)
{
    {
        const Guard guard(Why, Time, *Control, limit);
        co_await Control->Handshake();
    }
    co_await Judge();
}

Task<> TlsSession::Judge()
{
    const Certificate shown = Control->Peer(Host);
    Fingerprint = shown.Fingerprint;
    if (shown.IsTrusted() || (!Accepted.empty() && Accepted == shown.Fingerprint)) co_return;
    if (!Ask || shown.Fingerprint.empty()) throw DistrustOf(shown);
    Asked = true;
    bool accepted = false;
    {
        Question question(Net.Executor(), Open);
        const Guard guard(Why, Time, question);
        Ask(++Questions, shown);
        accepted = co_await question.Wait();
    }
    if (!accepted) throw DistrustOf(shown);
    Accepted = shown.Fingerprint;
}

Task<> TlsSession::AfterLogIn(ControlConnection& control)
{
    if (!Control) co_return;
    // The size of a buffer that TLS does not have; servers want to be told all the same, and the answer means nothing.
    (void)co_await control.Say("PBSZ 0");
    const Reply reply = co_await control.Say("PROT P");
    if (reply.KindOf() != Reply::Done)
        throw Failure{Failure::Refused, reply.Code, "The server does not protect the data: " + reply.Text()};
}

std::shared_ptr<Wire> TlsSession::WrapData(std::shared_ptr<Wire> wire)
{
    if (!Control) return wire;
    auto data = std::make_shared<TlsWire>(std::move(wire), Net.Executor(), Context);
    data->BeginTlsForData(Host, Fingerprint);
    return data;
}

void TlsSession::Answer(unsigned number, bool accepted)
{
    if (Open != nullptr && number == Questions) Open->Answer(accepted);
}

}  // namespace Ftp
