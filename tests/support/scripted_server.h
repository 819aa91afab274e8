#pragma once

#include "support/manual_clock.h"
#include "support/memory_network.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// What goes wrong while a script is played: after that many of its steps the server stops following it.
struct Disturbance {
    enum Kinds { None, HangUp, Reset, FallSilent, Call };

    Kinds Kind = None;
    std::size_t AfterSteps = 0;
    std::function<void()> What{};  ///< of Call; the server goes on with its script
};

/// A server that follows a transcript, one step a line:
///
///     S: 220 ready          it sends a line (CR LF is added)
///     S+ 220-par            it sends bytes as they are
///     C: USER ann           it waits for exactly this command; C: PWD * any that begins so
///     D: some bytes         it sends on the data connection
///     U: some bytes         it waits until the client has sent exactly this on the data connection, and its end
///     -- take 10            it reads so many bytes from the data connection as they come; U: tells what follows
///     -- listen 4001        connects to this port succeed from now on
///     -- silent 4001        connects to this port are never answered
///     -- accept             it waits for the client's data connection
///     -- call               it connects to the port that the client has opened last
///     -- call 10.1.2.3      somebody at this address does; the data connection stays what it was
///     -- door closed        it waits until the client has closed that port
///     -- end                it ends the data connection
///     -- break data         it resets the data connection
///     -- hold data          it reads no more from the data connection than 10 bytes
///     -- data gone          it waits until the client has closed the data connection
///     -- close              it ends the control connection
///     -- break              it resets the control connection
///     -- gone               it waits until the client has closed the control connection
///     -- pause 500          it does nothing for that many milliseconds
///     -- silence            it does nothing any more
///
/// \r \n \t \0 \\ and \xHH stand for bytes. A question for a size that the script does not wait for is answered with
/// "I know no sizes", so that a client may ask where it likes, and one to connect to the client with "I call nobody",
/// as most servers that anybody can reach would; SetStrict ends both. A control connection is accepted where the script
/// needs one. What the client sends against the script makes the server hang up; Complaint tells where.
class ScriptedServer final : public MemoryServer {
public:
    static constexpr int Port = 21;

    ScriptedServer(asio::any_io_executor executor, ManualClock& clock) : Where(std::move(executor)), Time(clock) {}

    /// Starts with the first step of a script; what was not played of the one before is forgotten.
    void Play(const std::string& script, Disturbance disturbance = {});

    /// The script was followed to its end.
    bool Finished() const { return Wrong.empty() && At == Steps.size(); }

    /// What is missing, or was wrong; empty when Finished.
    std::string Complaint() const;

    std::size_t StepCount() const { return Steps.size(); }

    std::size_t StepsDone() const { return At; }

    /// The next control connections give the client so many bytes at a time.
    void SetSlice(std::size_t bytes) { Slice = bytes; }

    /// The numbers that the host's name leads to.
    void SetHost(std::vector<asio::ip::address> addresses) { Host = std::move(addresses); }

    /// The look-up of names is never answered.
    void SetLookupSilent(bool on) { LookupSilent = on; }

    /// An address at which nobody answers at all.
    void SetDead(const asio::ip::address& address, Answer answer) { Dead.emplace_back(address, answer); }

    /// A SIZE against the script is as wrong as any other command.
    void SetStrict(bool on) { Strict = on; }

    /// Everything takes so long from one side to the other, the three steps of a connection included.
    void SetLatency(Ftp::Milliseconds latency) { Latency = latency; }

    /// So often the client has sent commands, however many at a time.
    int TimesHeard() const { return Heard; }

    /// Where the data connections went.
    const std::vector<Ftp::Endpoint>& DataPeers() const { return Peers; }

    /// The client's control or data connections that are still open.
    std::size_t OpenLinks() const;

    /// Obeys further directives on the control and the data connection, which it may replace; true when it has.
    std::function<bool(const std::string& text, std::shared_ptr<MemoryLink>& control,
                       std::shared_ptr<MemoryLink>& data)>
        Extra;

    Answer Accept(std::shared_ptr<MemoryLink> link) override;

    void Listening(std::shared_ptr<MemoryDoor> door) override { Door = std::move(door); }

    /// Those that were turned away.
    std::size_t StrangersLeft() const;

    std::vector<asio::ip::address> Find(const std::string& host, bool& silent) override;

private:
    struct Step {
        std::string Kind;
        std::string Text;
    };

    using Link = std::shared_ptr<MemoryLink>;

    void Schedule();
    void Later(int steps, std::function<void()> what);
    void Take(Link link);
    void Hear(const Link& link);
    void Proceed();
    bool Try(const Step& step);
    bool TryDirective(const std::string& text);
    bool TryConnectionDirective(const std::string& text);
    void RefuseToCall();
    bool Command(const std::string& wanted);
    bool Take(std::size_t count);
    bool Upload(const std::string& wanted);
    bool CallClient(const std::string& from);
    void Watch(const Link& link);
    void SendControl(const std::string& bytes);
    void SendData(const std::string& bytes);
    void Disturb();
    void Fail(const std::string& what);
    static void BreakLink(const Link& link);
    void EndLink(const Link& link);
    void EndAll(bool reset);

    asio::any_io_executor Where;
    ManualClock& Time;
    std::vector<Step> Steps;
    std::size_t At = 0;
    std::size_t Taken = 0;  ///< by the step that takes bytes
    Disturbance Trouble;
    bool Deaf = false;  ///< silent, or hung up, until the next script
    bool Scheduled = false;
    bool Paused = false;
    std::string Wrong;
    std::unique_ptr<Ftp::Clock::Alarm> Pause;

    std::vector<Link> Callers;  ///< control connections not yet taken by the script
    Link Control;
    Link Data;
    std::vector<std::weak_ptr<MemoryLink>> All;
    std::shared_ptr<MemoryDoor> Door;
    std::vector<Link> Strangers;
    std::set<int> OpenPorts;
    std::set<int> SilentPorts;
    std::vector<Ftp::Endpoint> Peers;
    std::vector<asio::ip::address> Host{asio::ip::make_address("127.0.0.1")};
    std::vector<std::pair<asio::ip::address, Answer>> Dead;
    std::size_t Slice = SIZE_MAX;
    bool LookupSilent = false;
    bool Strict = false;
    Ftp::Milliseconds Latency{0};
    std::vector<std::unique_ptr<Ftp::Clock::Alarm>> OnTheWay;
    std::map<const MemoryLink*, std::size_t> Arrived;  ///< bytes that the client has sent
    std::map<const MemoryLink*, std::size_t> Read;     ///< of them, bytes in commands that were read
    int Heard = 0;
    std::shared_ptr<int> Alive = std::make_shared<int>(0);
};
