#pragma once

#include "inet/ftp/task.h"

#include <asio/any_io_executor.hpp>
#include <asio/ip/tcp.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Ftp {

using Endpoint = asio::ip::tcp::endpoint;

/// Something that can be waited for, and given up: every pending and later wait then ends with a Failure.
class Abortable {
public:
    virtual ~Abortable() = default;
    virtual void Abort() = 0;
};

/// A stream of bytes to a server, in both directions. Waits throw Failure of the kind Connection. Its owner keeps it
/// alive while one of its tasks runs. Transfer thread only.
class Wire : public Abortable {
public:
    /// Opens the stream; once, before everything else.
    virtual Task<> Connect(Endpoint endpoint) = 0;

    /// Up to `size` bytes into `buffer`; 0 at the end of the stream.
    virtual Task<std::size_t> Read(char* buffer, std::size_t size) = 0;

    /// Writes all of the bytes.
    virtual Task<> Write(std::string bytes) = 0;

    /// The same with bytes that stay where they are until it returns.
    virtual Task<> WriteFrom(const char* bytes, std::size_t size) { return Write(std::string(bytes, size)); }

    /// Tells the other side that nothing more comes, and sees to it that what was written arrives.
    virtual Task<> SendEnd() = 0;

    /// After SendEnd: returns when the other side has ended the stream, too, where closing before that could undo what
    /// was sent. Whatever comes meanwhile is dropped.
    virtual Task<> AwaitEnd() { co_return; }

    /// Once Read has returned 0: false when the stream ended in a way that anybody between the two sides could have
    /// brought about, although it should not be possible (TLS without its close).
    virtual bool EndedProperly() const { return true; }

    virtual Task<> WaitReadable() = 0;
    virtual Task<> WaitWritable() = 0;

    /// Where the stream leads.
    virtual Endpoint Peer() const = 0;

    /// The address of this side; an unspecified one where the other side could not connect to it.
    virtual asio::ip::address Local() const { return {}; }

    /// The plain, non-blocking socket that carries the bytes as they are, or -1 when there is none.
    virtual int NativeSocket() const = 0;
};

/// The look-up of a host's addresses.
class Lookup : public Abortable {
public:
    /// The addresses of a host, at least one. Throws Failure NameError.
    virtual Task<std::vector<Endpoint>> Find(std::string host, std::uint16_t port) = 0;
};

/// A port of this computer that the other side can connect to, until it is given up. Waits throw Failure of the kind
/// Connection.
class Listener : public Abortable {
public:
    /// Opens a free port at this address and returns its number; once, before everything else.
    virtual std::uint16_t Listen(const asio::ip::address& address) = 0;

    /// The next connection, whoever has made it: its Peer tells.
    virtual Task<std::shared_ptr<Wire>> Accept() = 0;
};

/// Makes wires, look-ups and listeners: sockets in the program, memory in tests.
class Network {
public:
    virtual ~Network() = default;
    virtual std::shared_ptr<Wire> NewWire() = 0;
    virtual std::shared_ptr<Lookup> NewLookup() = 0;
    virtual std::shared_ptr<Listener> NewListener() = 0;
    virtual asio::any_io_executor Executor() = 0;
};

}  // namespace Ftp
