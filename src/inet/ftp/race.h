#pragma once

#include "inet/ftp/guard.h"
#include "inet/ftp/wire.h"

#include <memory>
#include <vector>

namespace Ftp {

/// Connects to the one of several addresses that answers first (RFC 8305): each is tried a quarter of a second after
/// the one before, or as soon as that has failed, both kinds of addresses in turn. All of them have the limit
/// together. Throws the Failure of the last attempt. Transfer thread only.
Task<std::shared_ptr<Wire>> ConnectToFirst(Network& network, Intent& intent, Clock& clock, Milliseconds limit,
                                           std::vector<Endpoint> endpoints);

}  // namespace Ftp
