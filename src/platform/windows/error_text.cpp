#include "platform/error_text.h"

#include <QString>
#include <array>
#include <windows.h>

std::string SystemErrorText(int error)
{
    // The system's own sentence does not say what is wrong.
    if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_USER_MAPPED_FILE)
        return "it is in use by another program";
    std::array<wchar_t, 512> text{};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(error), 0, text.data(), text.size(), nullptr);
    QString sentence = QString::fromWCharArray(text.data(), static_cast<qsizetype>(length)).simplified();
    if (sentence.endsWith(u'.')) sentence.chop(1);
    return sentence.isEmpty() ? "error " + std::to_string(error) : sentence.toStdString();
}
