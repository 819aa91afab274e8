#pragma once

#include "inet/ftp/proxy_address.h"
#include "inet/ftp/task.h"
#include "inet/ftp/wire.h"

#include <memory>
#include <string>

namespace Ftp {

/// Asks the proxy at the other end of a wire for a connection with a host; the wire then leads there. The host's name
/// is for the proxy to look up. Not one byte is read that comes behind the proxy's consent. No answer is waited for
/// longer than the caller's guard allows.
///
/// Throws Failure: of the kind Refused when the proxy says no or hangs up, with the status of an HTTP proxy as its
/// number; Protocol when its answer is not understood. No text holds the proxy's password.
Task<> OpenTunnel(std::shared_ptr<Wire> wire, Proxy via, std::string host, std::uint16_t port);

}  // namespace Ftp
