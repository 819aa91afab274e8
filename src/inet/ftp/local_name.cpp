#include "inet/ftp/local_name.h"

#include "base/local_name.h"
#include "inet/ftp/failure.h"

#include <algorithm>
#include <filesystem>

namespace Ftp {

namespace {

bool IsOneComponent(const std::string& name)
{
    const auto unfit = [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F || byte == '/' ||
               byte == static_cast<char>(std::filesystem::path::preferred_separator);
    };
    return !name.empty() && name != "." && name != ".." && std::none_of(name.begin(), name.end(), unfit);
}

}  // namespace

void CheckLocalName(const std::string& name)
{
    if (IsOneComponent(name) && IsFileNameHere(name)) return;
    throw Failure{Failure::Request, OperationError,
                  "A file cannot have the name \"" + name + "\" on this computer, so it was not touched."};
}

}  // namespace Ftp
