// Texts that travel through the program as characters come out as the bytes they came in as.

#include "base/byte_text.h"
#include "input.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString text = BytesToText(bytes);
    REQUIRE(TextToBytes(text) == bytes);
    for (const QChar unit : ShownText(text)) REQUIRE(unit.category() != QChar::Other_Control);
    return 0;
}
