#include "inet/ftp/inbound_wire.h"

#include "inet/ftp/failure.h"

#include <algorithm>
#include <optional>

namespace Ftp {

namespace {

/// Without what only this computer makes of a number: its zone, or the new form of an old one.
asio::ip::address Plain(const asio::ip::address& address)
{
    if (address.is_v4()) return address;
    const asio::ip::address_v6 six = address.to_v6();
    if (six.is_v4_mapped()) return asio::ip::make_address_v4(asio::ip::v4_mapped, six);
    return asio::ip::address_v6(six.to_bytes());
}

}  // namespace

InboundWire::InboundWire(Network& network, const asio::ip::address& local, const asio::ip::address& from,
                         std::function<void()> arrived)
    : Here(Plain(local)), From(Plain(from)), Door(network.NewListener()), Changed(network.Executor()),
      Arrived(std::move(arrived))
{
    // A number that is good for one link only counts together with its zone.
    Port = Door->Listen(Here.is_v4() ? Here : local);
}

std::string InboundWire::Line() const
{
    if (Here.is_v6()) return "EPRT |2|" + Here.to_string() + '|' + std::to_string(Port) + '|';
    std::string numbers = Here.to_string();
    std::replace(numbers.begin(), numbers.end(), '.', ',');
    return "PORT " + numbers + ',' + std::to_string(Port / 256) + ',' + std::to_string(Port % 256);
}

Task<> InboundWire::Arrive()
{
    while (Waiting) co_await Changed.Wait();
    if (Inner) co_return;
    if (IsOver) throw Failure{Failure::Connection, ConnectError, "The server has not opened the data connection."};
    Waiting = true;
    const std::shared_ptr<Listener> door = Door;
    std::optional<Failure> failure;
    try {
        while (!Inner && !IsOver) {
            const std::shared_ptr<Wire> caller = co_await door->Accept();
            if (!IsOver && Plain(caller->Peer().address()) == From)
                Inner = caller;
            else
                caller->Abort();
        }
    } catch (const Failure& thrown) {
        failure = thrown;
    }
    door->Abort();
    Waiting = false;
    IsOver = !Inner;
    Changed.Wake();
    if (failure) throw Failure(*failure);
    if (!Inner) throw Failure{Failure::Connection, AbortedError, "The data connection was given up."};
    if (Arrived) Arrived();
}

Task<std::size_t> InboundWire::Read(char* buffer, std::size_t size)
{
    co_await Arrive();
    co_return co_await Inner->Read(buffer, size);
}

Task<> InboundWire::Write(std::string bytes)
{
    co_await Arrive();
    co_await Inner->Write(std::move(bytes));
}

Task<> InboundWire::WriteFrom(const char* bytes, std::size_t size)
{
    co_await Arrive();
    co_await Inner->WriteFrom(bytes, size);
}

Task<> InboundWire::SendEnd()
{
    co_await Arrive();
    co_await Inner->SendEnd();
}

Task<> InboundWire::WaitReadable()
{
    co_await Arrive();
    co_await Inner->WaitReadable();
}

Task<> InboundWire::WaitWritable()
{
    co_await Arrive();
    co_await Inner->WaitWritable();
}

void InboundWire::Abort()
{
    IsOver = true;
    Door->Abort();
    if (Inner) Inner->Abort();
}

Endpoint InboundWire::Peer() const
{
    return Inner ? Inner->Peer() : Endpoint(From, 0);
}

int InboundWire::NativeSocket() const
{
    return Inner ? Inner->NativeSocket() : -1;
}

}  // namespace Ftp
