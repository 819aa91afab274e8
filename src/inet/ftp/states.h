#pragma once

namespace Ftp {

/// What an observer hears of, as the component numbers it.
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

}  // namespace Ftp
