#pragma once

#include <string>

/// What the system says about one of its error numbers (errno, or GetLastError and WSAGetLastError on Windows), as
/// UTF-8 and without a full stop. Any thread.
std::string SystemErrorText(int error);
