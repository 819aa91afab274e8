// What single replies tell: ports of 227 and 229, the folder of a 257, sizes of 150 and 213.

#include "inet/ftp/data_address.h"
#include "input.h"
#include "require.h"

#include <string>

namespace {

Ftp::Reply ReplyOf(Input input)
{
    Ftp::Reply reply;
    reply.Code = 200;
    do reply.Lines.emplace_back(input.Line());
    while (!input.Empty());
    return reply;
}

/// The text in quotes, as RFC 959 wants it written.
std::string Quoted(const std::string& path)
{
    std::string quoted = "\"";
    for (const char byte : path) quoted += byte == '"' ? std::string("\"\"") : std::string(1, byte);
    return quoted + '"';
}

void CheckWritten(const std::string& text)
{
    const std::string path = text.substr(0, text.find('\n'));
    if (path.empty()) return;
    Ftp::Reply reply;
    reply.Code = 257;
    reply.Lines = {Quoted(path)};
    REQUIRE(Ftp::QuotedPath(reply) == path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Input input(data, size);
    const Ftp::Reply reply = ReplyOf(input);
    const std::string& last = reply.Lines.back();
    for (const auto& port : {Ftp::PassivePort(reply), Ftp::ExtendedPort(reply)}) {
        REQUIRE(!port || (*port > 0 && *port <= 65535));
    }
    if (const auto port = Ftp::PassivePort(reply)) REQUIRE(last.find(std::to_string(*port % 256)) != std::string::npos);
    if (const auto port = Ftp::ExtendedPort(reply)) REQUIRE(last.find(std::to_string(*port)) != std::string::npos);
    if (const auto path = Ftp::QuotedPath(reply)) REQUIRE(!path->empty() && path->size() + 2 <= size);
    if (const auto bytes = Ftp::AnnouncedSize(reply))
        REQUIRE(reply.Text().find(std::to_string(*bytes)) != std::string::npos);
    if (const auto bytes = Ftp::SizeFigure(reply)) REQUIRE(last.find(std::to_string(*bytes)) != std::string::npos);
    CheckWritten(std::string(input.All()));
    return 0;
}
