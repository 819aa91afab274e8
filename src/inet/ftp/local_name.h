#pragma once

#include <string>

namespace Ftp {

/// Throws Failure of the kind Request when a name cannot be that of a file in one given folder: what came from a server
/// is never used as a path.
void CheckLocalName(const std::string& name);

}  // namespace Ftp
