// Names in listing lines: a name is one component out of the line's own bytes.

#include "base/listing_name.h"
#include "input.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view line = Input(data, size).All();
    const auto name = NameInListingLine(line);
    if (!name) return 0;
    REQUIRE(!name->empty() && line.find(*name) != std::string_view::npos);
    REQUIRE(name->find('/') == std::string::npos && !HoldsControlCharacter(*name));
    return 0;
}
