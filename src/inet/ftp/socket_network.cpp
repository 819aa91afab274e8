#include "inet/ftp/socket_network.h"

#include "inet/ftp/failure.h"
#include "inet/ftp/waker.h"
#include "platform/detached_thread.h"
#include "platform/error_text.h"

#include <asio/post.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <mutex>
#include <optional>

namespace Ftp {

namespace {

std::string TextOf(const asio::error_code& error)
{
    return error.category() == asio::error::get_system_category() ? SystemErrorText(error.value()) : error.message();
}

Failure ConnectionFailure(const asio::error_code& error)
{
    if (error == asio::error::connection_reset || error == asio::error::broken_pipe)
        return {Failure::Connection, ResetError, "The connection with the server was reset."};
    return {Failure::Connection, AbortedError, "The connection with the server was lost (" + TextOf(error) + ")."};
}

Failure ConnectFailure(const asio::error_code& error)
{
    return {Failure::Connection, ConnectError, "The server could not be reached (" + TextOf(error) + ")."};
}

class SocketWire final : public Wire {
public:
    explicit SocketWire(const asio::any_io_executor& executor) : Socket(executor) {}

    /// Of a connection that the other side has made.
    SocketWire(asio::ip::tcp::socket socket, Endpoint peer) : Socket(std::move(socket)), Other(std::move(peer))
    {
        SetUp();
    }

    Task<> Connect(Endpoint endpoint) override
    {
        asio::error_code error;
        co_await Socket.async_connect(endpoint, asio::redirect_error(asio::use_awaitable, error));
        if (error) throw ConnectFailure(error);
        SetUp();
        Other = endpoint;
    }

    Task<std::size_t> Read(char* buffer, std::size_t size) override
    {
        asio::error_code error;
        const std::size_t count = co_await Socket.async_read_some(asio::buffer(buffer, size),
                                                                  asio::redirect_error(asio::use_awaitable, error));
        if (error == asio::error::eof) co_return 0;
        if (error) throw ConnectionFailure(error);
        co_return count;
    }

    Task<> Write(std::string bytes) override { co_await WriteFrom(bytes.data(), bytes.size()); }

    Task<> WriteFrom(const char* bytes, std::size_t size) override
    {
        asio::error_code error;
        co_await asio::async_write(Socket, asio::buffer(bytes, size), asio::redirect_error(asio::use_awaitable, error));
        if (error) throw ConnectionFailure(error);
    }

    Task<> SendEnd() override
    {
        asio::error_code error;
        Socket.shutdown(asio::ip::tcp::socket::shutdown_send, error);
        if (error) throw ConnectionFailure(error);
        co_return;
    }

    Task<> WaitReadable() override { co_await Wait(asio::ip::tcp::socket::wait_read); }

    Task<> WaitWritable() override { co_await Wait(asio::ip::tcp::socket::wait_write); }

    void Abort() override
    {
        asio::error_code ignored;
        Socket.close(ignored);
    }

    Endpoint Peer() const override { return Other; }

    asio::ip::address Local() const override
    {
        asio::error_code ignored;
        return Socket.local_endpoint(ignored).address();
    }

    // The system's handles fit into 32 bits everywhere.
    int NativeSocket() const override
    {
        return static_cast<int>(const_cast<asio::ip::tcp::socket&>(Socket).native_handle());
    }

private:
    void SetUp()
    {
        asio::error_code ignored;
        Socket.set_option(asio::ip::tcp::no_delay(true), ignored);
        Socket.set_option(asio::socket_base::keep_alive(true), ignored);
        Socket.native_non_blocking(true, ignored);
    }

    Task<> Wait(asio::ip::tcp::socket::wait_type what)
    {
        asio::error_code error;
        co_await Socket.async_wait(what, asio::redirect_error(asio::use_awaitable, error));
        if (error) throw ConnectionFailure(error);
    }

    asio::ip::tcp::socket Socket;
    Endpoint Other;
};

class SocketListener final : public Listener {
public:
    explicit SocketListener(const asio::any_io_executor& executor) : Door(executor) {}

    std::uint16_t Listen(const asio::ip::address& address) override
    {
        const Endpoint anyPort(address, 0);
        asio::error_code error;
        Door.open(anyPort.protocol(), error);
        if (!error) Door.bind(anyPort, error);
        if (!error) Door.listen(asio::socket_base::max_listen_connections, error);
        const Endpoint here = error ? Endpoint() : Door.local_endpoint(error);
        if (error)
            throw Failure{Failure::Connection, ConnectError,
                          "No port could be opened for the data (" + TextOf(error) + ")."};
        return here.port();
    }

    Task<std::shared_ptr<Wire>> Accept() override
    {
        Endpoint peer;
        asio::error_code error;
        asio::ip::tcp::socket caller =
            co_await Door.async_accept(peer, asio::redirect_error(asio::use_awaitable, error));
        if (error) throw ConnectionFailure(error);
        co_return std::make_shared<SocketWire>(std::move(caller), peer);
    }

    void Abort() override
    {
        asio::error_code ignored;
        Door.close(ignored);
    }

private:
    asio::ip::tcp::acceptor Door;
};

/// What the thread that asks the system and the one that waits for it share. The system's look-up cannot be
/// interrupted, so its thread is left behind when nobody waits any more, and must then touch nothing but this.
struct Inquiry {
    std::mutex Lock;
    bool Abandoned = false;
    std::optional<std::vector<Endpoint>> Found;  ///< empty when there is no such host
    std::string Reason;
};

class SystemLookup final : public Lookup {
public:
    explicit SystemLookup(asio::any_io_executor executor) : Where(std::move(executor)), Answered(Where) {}

    ~SystemLookup() override { Abandon(); }

    Task<std::vector<Endpoint>> Find(std::string host, std::uint16_t port) override
    {
        asio::error_code error;
        const asio::ip::address address = asio::ip::make_address(host, error);
        if (!error) co_return std::vector<Endpoint>(1, Endpoint(address, port));
        if (!GivenUp) Start(std::move(host), port);
        while (!GivenUp && !Asked->Found) co_await Answered.Wait();
        if (GivenUp) throw Failure{Failure::Connection, AbortedError, "The look-up of the server's name was given up."};
        if (Asked->Found->empty())
            throw Failure{Failure::Connection, NameError,
                          "The name of the server could not be found (" + Asked->Reason + ")."};
        co_return *Asked->Found;
    }

    void Abort() override
    {
        Abandon();
        GivenUp = true;
        Answered.Wake();
    }

private:
    void Start(std::string host, std::uint16_t port)
    {
        auto ask = [asked = Asked, host = std::move(host), port, where = Where, wake = [this] { Answered.Wake(); }] {
            // A resolver needs a context of its own here: its answer is handed over under the lock.
            asio::io_context own;
            asio::ip::tcp::resolver resolver(own);
            asio::error_code error;
            std::vector<Endpoint> found;
            for (const auto& entry : resolver.resolve(host, std::to_string(port), error)) found.push_back(entry);
            const std::lock_guard guard(asked->Lock);
            if (asked->Abandoned) return;
            asio::post(where, [asked, wake, found = std::move(found), reason = TextOf(error)] {
                const std::lock_guard inner(asked->Lock);
                if (asked->Abandoned) return;
                asked->Found = found;
                asked->Reason = reason;
                wake();
            });
        };
        RunDetached(std::move(ask));
    }

    void Abandon()
    {
        const std::lock_guard guard(Asked->Lock);
        Asked->Abandoned = true;
    }

    asio::any_io_executor Where;
    Waker Answered;
    std::shared_ptr<Inquiry> Asked = std::make_shared<Inquiry>();
    bool GivenUp = false;
};

}  // namespace

std::shared_ptr<Wire> SocketNetwork::NewWire()
{
    return std::make_shared<SocketWire>(Where);
}

std::shared_ptr<Listener> SocketNetwork::NewListener()
{
    return std::make_shared<SocketListener>(Where);
}

std::shared_ptr<Lookup> SocketNetwork::NewLookup()
{
    return std::make_shared<SystemLookup>(Where);
}

}  // namespace Ftp
