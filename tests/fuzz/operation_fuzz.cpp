// Operation texts: whatever is understood has names, and a name written twice in quotes is that name.

#include "inet/ftp/operation.h"
#include "input.h"
#include "require.h"

#include <string>
#include <type_traits>

namespace {

template <typename Command>
void CheckNames(const Command& command, std::string_view text)
{
    const auto isPart = [&](const std::string& name) {
        return !name.empty() && text.find(name) != std::string_view::npos;
    };
    if constexpr (std::is_same_v<Command, Ftp::Receive> || std::is_same_v<Command, Ftp::Send>) {
        REQUIRE(isPart(command.Remote) && isPart(command.Local));
    }
    if constexpr (std::is_same_v<Command, Ftp::Receive>)
        REQUIRE(command.LocalGiven == (command.Local != command.Remote));
    if constexpr (std::is_same_v<Command, Ftp::Rename>) REQUIRE(isPart(command.From) && isPart(command.To));
    if constexpr (requires { command.Name; }) REQUIRE(isPart(command.Name));
}

void CheckTwice(const std::string& name)
{
    const std::string quoted = '"' + name + '"';
    const auto got = Ftp::ParseOperation("GET " + quoted + ' ' + quoted);
    REQUIRE(got);
    const auto& receive = std::get<Ftp::Receive>(*got);
    REQUIRE(receive.Remote == name && receive.Local == name && !receive.LocalGiven);
    const auto put = Ftp::ParseOperation("PUT " + quoted + ' ' + quoted);
    REQUIRE(put && std::get<Ftp::Send>(*put).Remote == name && std::get<Ftp::Send>(*put).Local == name);
    const auto erase = Ftp::ParseOperation("DELETE " + quoted);
    REQUIRE(erase && std::get<Ftp::Delete>(*erase).Name == name);
    const auto enter = Ftp::ParseOperation("CD " + name);
    REQUIRE(enter && std::get<Ftp::ChangeFolder>(*enter).Name == name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(Input(data, size).All());
    if (const auto operation = Ftp::ParseOperation(text)) {
        std::visit([&](const auto& command) { CheckNames(command, text); }, *operation);
    }
    for (const char* verb : {"GET ", "PUT ", "RENAME ", "DELETE ", "CD "}) (void)Ftp::ParseOperation(verb + text);
    if (!text.empty()) CheckTwice(text);
    return 0;
}
