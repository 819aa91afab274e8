#include "platform/error_text.h"

#include <system_error>

std::string SystemErrorText(int error)
{
    return std::generic_category().message(error);
}
