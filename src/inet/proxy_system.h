#pragma once

#include "inet/ftp/proxy_address.h"

#include <cstdint>
#include <string>

/// How the system is set up to reach a server: straight, or through one of its proxies that we can speak to. This
/// computer itself is always reached straight. May take long, for some systems fetch their rules from the network. Any
/// thread.
Ftp::Proxy SystemProxy(const std::string& scheme, const std::string& host, std::uint16_t port);
