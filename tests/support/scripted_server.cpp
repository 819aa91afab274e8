#include "support/scripted_server.h"

#include <algorithm>
#include <asio/post.hpp>
#include <sstream>

namespace {

std::string Trimmed(const std::string& line)
{
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return line.substr(first);
}

std::string Unescaped(const std::string& text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            bytes += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'r':
            bytes += '\r';
            break;
        case 'n':
            bytes += '\n';
            break;
        case 't':
            bytes += '\t';
            break;
        case '0':
            bytes += '\0';
            break;
        case 'x':
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
            break;
        default:
            bytes += text[i];
            break;
        }
    }
    return bytes;
}

int NumberIn(const std::string& directive)
{
    return std::stoi(directive.substr(directive.find(' ') + 1));
}

}  // namespace

void ScriptedServer::Play(const std::string& script, Disturbance disturbance)
{
    Steps.clear();
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        line = Trimmed(line);
        if (line.empty()) continue;
        Steps.push_back({line.substr(0, 2), Unescaped(line.size() > 3 ? line.substr(3) : std::string())});
    }
    At = 0;
    Taken = 0;
    Deaf = false;
    Paused = false;
    Wrong.clear();
    Trouble = std::move(disturbance);
    Schedule();
}

std::string ScriptedServer::Complaint() const
{
    if (!Wrong.empty()) return Wrong;
    if (At == Steps.size()) return {};
    return "step " + std::to_string(At + 1) + " never came: " + Steps[At].Kind + " " + Steps[At].Text;
}

std::size_t ScriptedServer::OpenLinks() const
{
    return static_cast<std::size_t>(std::count_if(All.begin(), All.end(), [](const auto& one) {
        const Link link = one.lock();
        return link && !link->ClientGone;
    }));
}

MemoryServer::Answer ScriptedServer::Accept(std::shared_ptr<MemoryLink> link)
{
    for (const auto& [address, answer] : Dead)
        if (address == link->Address.address()) return answer;
    const int port = link->Address.port();
    if (SilentPorts.contains(port)) return Answer::Silent;
    if (Deaf && Trouble.Kind == Disturbance::FallSilent) return Answer::Silent;
    if (Deaf || (port != Port && !OpenPorts.contains(port))) return Answer::Refused;
    Watch(link);
    if (port == Port)
        link->Slice = Slice;
    else
        OpenPorts.erase(port);
    link->Pending = Latency.count() > 0;
    Later(2, [link] {
        link->Pending = false;
        link->Wake();
    });
    Later(3, [this, link] { Take(link); });
    return Answer::Accepted;
}

void ScriptedServer::Watch(const Link& link)
{
    link->Notified = [this, alive = std::weak_ptr(Alive), watched = std::weak_ptr(link)] {
        if (alive.expired()) return;
        if (const Link known = watched.lock()) Hear(known);
    };
    All.push_back(link);
}

/// False when the port is closed.
bool ScriptedServer::CallClient(const std::string& from)
{
    if (!Door || !Door->Open || !Control) return false;
    if (from.empty()) Data.reset();
    const Ftp::Endpoint here(from.empty() ? Control->Address.address() : asio::ip::make_address(from), 20);
    Later(1, [this, here, door = Door, isStranger = !from.empty()] {
        const Link link = door->Call(here);
        Watch(link);
        if (isStranger) Strangers.push_back(link);
        if (isStranger) return;
        Peers.push_back(door->Address);
        Later(1, [this, link] {
            Data = link;
            Schedule();
        });
    });
    return true;
}

std::size_t ScriptedServer::StrangersLeft() const
{
    return static_cast<std::size_t>(
        std::count_if(Strangers.begin(), Strangers.end(), [](const Link& one) { return one->ClientGone; }));
}

void ScriptedServer::Take(Link link)
{
    if (link->Address.port() == Port) {
        Callers.push_back(std::move(link));
    } else {
        Peers.push_back(link->Address);
        Data = std::move(link);
    }
    Schedule();
}

/// Does something after so many times the latency; at once where there is none.
void ScriptedServer::Later(int steps, std::function<void()> what)
{
    if (Latency.count() == 0)
        what();
    else
        OnTheWay.push_back(Time.After(Latency * steps, std::move(what)));
}

void ScriptedServer::Hear(const Link& link)
{
    Later(1, [this, link = link.get(), port = link->Address.port(), sum = Read[link.get()] + link->ToServer.size()] {
        if (port == Port && sum > Arrived[link]) ++Heard;
        Arrived[link] = std::max(Arrived[link], sum);
        Schedule();
    });
}

std::vector<asio::ip::address> ScriptedServer::Find(const std::string& host, bool& silent)
{
    silent = LookupSilent;
    if (host == "server.test" || host == "server.test.") return Host;
    asio::error_code error;
    const asio::ip::address number = asio::ip::make_address(host, error);
    if (error) return {};
    return {number};
}

// The client is in the middle of its own step when it notifies; the server answers when that is over.
void ScriptedServer::Schedule()
{
    if (Scheduled) return;
    Scheduled = true;
    asio::post(Where, [this, alive = std::weak_ptr(Alive)] {
        if (alive.expired()) return;
        Scheduled = false;
        Proceed();
    });
}

void ScriptedServer::Proceed()
{
    while (!Deaf && !Paused) {
        if (Trouble.Kind != Disturbance::None && At == Trouble.AfterSteps) Disturb();
        if (Deaf || At == Steps.size() || !Try(Steps[At])) break;
        ++At;
    }
    const bool isIdle = At == Steps.size() || Steps[At].Kind == "--";
    if (!Deaf && !Paused && !Strict && Control && isIdle) RefuseToCall();
}

void ScriptedServer::Disturb()
{
    switch (Trouble.Kind) {
    case Disturbance::Call:
        Trouble.Kind = Disturbance::None;
        Trouble.What();
        return;
    case Disturbance::HangUp:
        EndAll(false);
        break;
    case Disturbance::Reset:
        EndAll(true);
        break;
    case Disturbance::FallSilent:
    case Disturbance::None:
        break;
    }
    Deaf = true;
}

bool ScriptedServer::Try(const Step& step)
{
    if (step.Kind == "--" && Extra && Extra(step.Text, Control, Data)) return true;
    if (step.Kind == "--") return TryConnectionDirective(step.Text) || TryDirective(step.Text);
    if (step.Kind == "D:" || step.Kind == "U:") {
        if (!Data) return false;
        if (step.Kind == "U:") return Upload(step.Text);
        SendData(step.Text);
        return true;
    }
    if (Control && Control->ClientGone) Control.reset();
    if (!Control) {
        std::erase_if(Callers, [](const Link& caller) { return caller->ClientGone; });
        if (Callers.empty()) return false;
        Control = Callers.front();
        Callers.erase(Callers.begin());
    }
    if (step.Kind == "C:") return Command(step.Text);
    if (step.Kind != "S:" && step.Kind != "S+") {
        Fail("no such step: " + step.Kind);
        return false;
    }
    SendControl(step.Kind == "S:" ? step.Text + "\r\n" : step.Text);
    return true;
}

bool ScriptedServer::TryConnectionDirective(const std::string& text)
{
    if (text == "gone") {
        if (!Control || !Control->ClientGone) return false;
        Control.reset();
        return true;
    }
    if (text == "data gone") return Data && Data->ClientGone;
    if (text == "accept") return Data && !Data->ServerEnded && (Data->ClientEnded || !Data->ClientGone);
    if (text == "door closed") return Door && !Door->Open;
    if (text == "call") return CallClient({});
    if (text.starts_with("call ")) return CallClient(text.substr(5));
    if (text == "end")
        EndLink(Data);
    else if (text == "break data")
        BreakLink(Data);
    else if (text == "close")
        EndLink(std::exchange(Control, nullptr));
    else if (text == "break")
        BreakLink(std::exchange(Control, nullptr));
    else if (text == "hold data" && Data)
        Data->Window = 10;
    else
        return false;
    return true;
}

bool ScriptedServer::TryDirective(const std::string& text)
{
    if (text.starts_with("listen ")) {
        Data.reset();
        OpenPorts.insert(NumberIn(text));
        return true;
    }
    if (text.starts_with("take ")) return Take(static_cast<std::size_t>(NumberIn(text)));
    if (text.starts_with("silent ")) {
        SilentPorts.insert(NumberIn(text));
        return true;
    }
    if (text.starts_with("pause ")) {
        Paused = true;
        Pause = Time.After(Ftp::Milliseconds(NumberIn(text)), [this] {
            Paused = false;
            Schedule();
        });
        return true;
    }
    if (text == "silence") Deaf = true;
    return false;
}

/// A client may ask for it where the script has no room for that.
void ScriptedServer::RefuseToCall()
{
    const std::string& got = Control->ToServer;
    const std::size_t end = got.find("\r\n");
    if (end == std::string::npos || (!got.starts_with("PORT ") && !got.starts_with("EPRT "))) return;
    Control->ToServer.erase(0, end + 2);
    Read[Control.get()] += end + 2;
    SendControl("502 I call nobody\r\n");
}

bool ScriptedServer::Command(const std::string& wanted)
{
    if (!Strict && !wanted.starts_with("PORT ") && !wanted.starts_with("EPRT ") && wanted != "*") RefuseToCall();
    const std::size_t end = Control->ToServer.find("\r\n");
    if (end == std::string::npos) return false;
    if (Latency.count() > 0 && Read[Control.get()] + end + 2 > Arrived[Control.get()]) return false;
    const std::string got = Control->ToServer.substr(0, end);
    Control->ToServer.erase(0, end + 2);
    Read[Control.get()] += end + 2;
    if (got == wanted || (wanted.ends_with('*') && got.starts_with(wanted.substr(0, wanted.size() - 1)))) return true;
    if (!Strict && got.starts_with("SIZE ")) {
        SendControl("550 I know no sizes\r\n");
        return Command(wanted);
    }
    Fail("step " + std::to_string(At + 1) + ": wanted C: " + wanted + ", got " + got);
    return false;
}

bool ScriptedServer::Take(std::size_t count)
{
    if (!Data) return false;
    const std::size_t now = std::min(count - Taken, Data->ToServer.size());
    Data->ToServer.erase(0, now);
    Data->Wake();
    Taken += now;
    if (Taken < count) return false;
    Taken = 0;
    return true;
}

bool ScriptedServer::Upload(const std::string& wanted)
{
    if (!Data->ClientEnded) return false;
    if (Data->ToServer == wanted) return true;
    Fail("step " + std::to_string(At + 1) + ": wanted U: " + wanted + ", got " + Data->ToServer);
    return false;
}

void ScriptedServer::SendControl(const std::string& bytes)
{
    Later(1, [link = Control, bytes] {
        link->ToClient += bytes;
        link->Wake();
    });
}

void ScriptedServer::SendData(const std::string& bytes)
{
    Later(1, [link = Data, bytes] {
        link->ToClient += bytes;
        link->Wake();
    });
}

void ScriptedServer::Fail(const std::string& what)
{
    Wrong = what;
    Deaf = true;
    EndAll(false);
}

void ScriptedServer::EndLink(const Link& link)
{
    if (!link) return;
    Later(1, [link] {
        link->ServerEnded = true;
        link->Wake();
    });
}

void ScriptedServer::BreakLink(const Link& link)
{
    if (!link) return;
    link->Broken = true;
    link->Wake();
}

void ScriptedServer::EndAll(bool reset)
{
    for (const auto& one : All) {
        if (const Link link = one.lock()) reset ? BreakLink(link) : EndLink(link);
    }
    Control.reset();
    Data.reset();
    Callers.clear();
    OpenPorts.clear();
}
