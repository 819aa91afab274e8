#include "arbitrary_server.h"

#include "require.h"

#include <algorithm>
#include <array>
#include <utility>

MemoryServer::Answer ArbitraryServer::Accept(std::shared_ptr<MemoryLink> link)
{
    const Answer answer = std::exchange(Next, Answer::Accepted);
    if (answer != Answer::Accepted) return answer;
    Links.push_back(link);
    const bool isControl = link->Address.port() == 21;
    if (isControl) {
        CheckCommands();
        Seen = 0;
        Unfinished.clear();
        LastCommand.clear();
    }
    (isControl ? Control : Data) = std::move(link);
    return answer;
}

std::vector<asio::ip::address> ArbitraryServer::Find(const std::string&, bool&)
{
    return {asio::ip::make_address("127.0.0.1")};
}

bool ArbitraryServer::Step(char letter, Input& input)
{
    switch (letter) {
    case 's':
        Send(Control, std::string(input.Line()) + "\r\n");
        return true;
    case 'S':
        Send(Control, input.Line());
        return true;
    case 'p':
        Send(Control, AnswerInTheBook());
        return true;
    case 'D':
        Send(Data, std::string(input.Line()) + "\r\n");
        return true;
    case 'd':
        Send(Data, input.Line());
        return true;
    case 'e':
        End(Data);
        return true;
    case 'b':
        Reset(Data);
        return true;
    case 'c':
        End(Control);
        return true;
    case 'r':
        Reset(Control);
        return true;
    case 'l':
        if (Control) Control->Slice = Control->Slice == 1 ? SIZE_MAX : 1;
        return true;
    case 'w':
        if (Data) Data->Window = 10;
        return true;
    case 'u':
        if (Data) {
            Data->ToServer.clear();
            Data->Wake();
        }
        return true;
    case 'f':
        Next = Answer::Refused;
        return true;
    case 'q':
        Next = Answer::Silent;
        return true;
    default:
        return false;
    }
}

void ArbitraryServer::CheckCommands()
{
    if (!Control) return;
    Unfinished.append(Control->ToServer, Seen);
    Seen = Control->ToServer.size();
    for (std::size_t end = Unfinished.find("\r\n"); end != std::string::npos; end = Unfinished.find("\r\n")) {
        LastCommand = Unfinished.substr(0, end);
        Unfinished.erase(0, end + 2);
        REQUIRE(!LastCommand.empty() && !HoldsControlCharacter(LastCommand));
    }
    REQUIRE(Unfinished.empty());
}

bool ArbitraryServer::EverythingIsClosed() const
{
    return std::all_of(Links.begin(), Links.end(), [](const Link& link) { return link->ClientGone; });
}

void ArbitraryServer::Send(const Link& link, std::string_view bytes)
{
    if (!link || link->ServerEnded || link->Broken) return;
    link->ToClient += bytes;
    link->Wake();
}

void ArbitraryServer::End(const Link& link)
{
    if (!link) return;
    link->ServerEnded = true;
    link->Wake();
}

void ArbitraryServer::Reset(const Link& link)
{
    if (!link) return;
    link->Broken = true;
    link->Wake();
}

std::string ArbitraryServer::AnswerInTheBook() const
{
    struct Answer {
        std::string_view Verb;
        const char* Reply;
    };

    static constexpr std::array Answers = {
        Answer{"USER", "331 password please\r\n"},
        Answer{"PASS", "230 welcome\r\n"},
        Answer{"TYPE", "200 fine\r\n"},
        Answer{"EPSV", "229 here (|||4001|)\r\n"},
        Answer{"PASV", "227 here (127,0,0,1,15,161)\r\n"},
        Answer{"LIST", "150 coming\r\n"},
        Answer{"NLST", "150 coming\r\n"},
        Answer{"RETR", "150 coming (9 bytes)\r\n"},
        Answer{"STOR", "150 go on\r\n"},
        Answer{"SIZE", "213 9\r\n"},
        Answer{"PWD", "257 \"/a \"\"b\"\"\" is current\r\n"},
        Answer{"RNFR", "350 go on\r\n"},
        Answer{"FEAT", "211-can\r\n EPSV\r\n SIZE\r\n UTF8\r\n211 end\r\n"},
    };
    if (LastCommand.empty()) return "220 ready\r\n";
    for (const Answer& answer : Answers) {
        if (std::string_view(LastCommand).starts_with(answer.Verb)) return answer.Reply;
    }
    return "250 done\r\n";
}
