#include "platform/open_address.h"

#include <shellapi.h>
#include <windows.h>

void OpenAddress(const QString& address)
{
    (void)ShellExecuteW(nullptr, nullptr, reinterpret_cast<const wchar_t*>(address.utf16()), nullptr, nullptr,
                        SW_SHOWNORMAL);
}
