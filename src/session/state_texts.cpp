#include "session/state_texts.h"

#include "inet/inet.h"

#include <array>

namespace {

struct Entry {
    int State;
    const char* Text;
};

// Looked through from the top: the second entry of Requesting is never reached.
constexpr std::array Entries{
    Entry{Inet::None, "Waiting..."},
    Entry{Inet::ResolvingHost, "Resolving Host"},
    Entry{Inet::HostResolved, "Host Resolved"},
    Entry{Inet::Connecting, "Connecting..."},
    Entry{Inet::Connected, "Connected!"},
    Entry{Inet::Requesting, "Requesting..."},
    Entry{Inet::RequestSent, "Request Sent"},
    Entry{Inet::ReceivingResponse, "Receiving Response..."},
    Entry{Inet::ResponseReceived, "Response Received!"},
    Entry{Inet::Disconnecting, "Disconnecting..."},
    Entry{Inet::Disconnected, "Disconnected"},
    Entry{Inet::ResponseCompleted, "Response Completed!"},
    Entry{Inet::Requesting, "Timing Out!"},
};

}  // namespace

const char* StateText(int state)
{
    for (const Entry& entry : Entries)
        if (entry.State == state) return entry.Text;
    return nullptr;
}
