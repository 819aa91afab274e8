#include "platform/open_address.h"

// The other header needs this one before it.
// clang-format off
#include <windows.h>
#include <shellapi.h>

// clang-format on

void OpenAddress(const QString& address)
{
    (void)ShellExecuteW(nullptr, nullptr, reinterpret_cast<const wchar_t*>(address.utf16()), nullptr, nullptr,
                        SW_SHOWNORMAL);
}
