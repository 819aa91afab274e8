#include "inet/ftp/race.h"

#include "inet/ftp/waker.h"

#include <algorithm>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <optional>

namespace Ftp {

namespace {

constexpr Milliseconds Head{250};  // RFC 8305, 5: of one attempt before the next

struct Race final : Abortable {
    explicit Race(const asio::any_io_executor& executor) : Changed(executor) {}

    void Abort() override
    {
        IsOver = true;
        const std::vector<std::shared_ptr<Wire>> running = Running;
        for (const std::shared_ptr<Wire>& wire : running) wire->Abort();
        Changed.Wake();
    }

    bool IsOpen() const { return !IsOver && !Winner; }

    Waker Changed;
    std::vector<std::shared_ptr<Wire>> Running;
    std::shared_ptr<Wire> Winner;
    Failure Last{Failure::Connection, NameError, "The name of the server has no address."};
    bool IsOver = false;
};

Task<> Attempt(std::shared_ptr<Race> race, std::shared_ptr<Wire> wire, Endpoint endpoint)
{
    std::optional<Failure> failure;
    try {
        co_await wire->Connect(endpoint);
    } catch (const Failure& thrown) {
        failure = thrown;
    }
    std::erase(race->Running, wire);
    if (failure && race->IsOpen()) race->Last = *failure;
    if (!failure && race->IsOpen())
        race->Winner = wire;
    else
        wire->Abort();
    race->Changed.Wake();
}

/// Both kinds in turn, beginning with the kind that the system puts first.
std::vector<Endpoint> InTurn(const std::vector<Endpoint>& endpoints)
{
    std::vector<Endpoint> first;
    std::vector<Endpoint> second;
    for (const Endpoint& one : endpoints)
        (one.address().is_v6() == endpoints.front().address().is_v6() ? first : second).push_back(one);
    std::vector<Endpoint> mixed;
    for (std::size_t at = 0; at < std::max(first.size(), second.size()); ++at) {
        if (at < first.size()) mixed.push_back(first[at]);
        if (at < second.size()) mixed.push_back(second[at]);
    }
    return mixed;
}

}  // namespace

Task<std::shared_ptr<Wire>> ConnectToFirst(Network& network, Intent& intent, Clock& clock, Milliseconds limit,
                                           std::vector<Endpoint> endpoints)
{
    const auto race = std::make_shared<Race>(network.Executor());
    const Guard guard(intent, clock, *race, limit);
    const std::vector<Endpoint> inTurn = InTurn(endpoints);
    for (const Endpoint& endpoint : inTurn) {
        const std::shared_ptr<Wire> wire = network.NewWire();
        race->Running.push_back(wire);
        asio::co_spawn(network.Executor(), Attempt(race, wire, endpoint), asio::detached);
        bool isLate = false;
        const auto alarm = clock.After(Head, [&isLate, &race] {
            isLate = true;
            race->Changed.Wake();
        });
        while (race->IsOpen() && !race->Running.empty() && !isLate) co_await race->Changed.Wait();
        if (!race->IsOpen()) break;
    }
    while (race->IsOpen() && !race->Running.empty()) co_await race->Changed.Wait();
    const std::shared_ptr<Wire> winner = race->Winner;
    race->Abort();
    if (!winner) throw Failure(race->Last);
    co_return winner;
}

}  // namespace Ftp
