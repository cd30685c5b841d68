// Any bytes as text of an Access database: what comes out is UTF-8 and grows within bounds, and a decimal
// of any bits and scale has a text that agrees with its scaled forms. A
// calculated value lies within its bytes.
#include "KvMdbText.h"

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMdbCalculated.h"
#include "KvMdbDecimal.h"
#include "KvUtf8.h"

namespace {

using namespace kv;

void CheckText(std::string_view Bytes)
{
    std::string Storage;
    try {
        const auto Text = ReadUnicodeText(Bytes, Storage);
        Require(IsValidUtf8(Text));
        Require(Text.size() <= 4 * Bytes.size());
    }
    catch (const EFormatError&) {                   // half a character
    }
}

void CheckDecimal(std::string_view Bytes)
{
    const TMdbDecimal Number(Bytes.substr(1, TMdbDecimal::Size), static_cast<unsigned char>(Bytes[0]));
    const auto Text = Number.ToText();
    Require(!Text.empty() && Text.size() <= 300);
    if (const auto Whole = Number.Scaled(0))
        Require(std::to_string(*Whole) == Text);
    else if (const auto Amount = Number.Scaled(4))
        Require(Text.find('.') != Text.npos || *Amount % 10000 == 0);
}

void CheckCalculated(std::string_view Bytes)
{
    try {
        const auto Value = CalculatedValue(Bytes);
        Require(Value.data() >= Bytes.data() && Value.data() + Value.size() <= Bytes.data() + Bytes.size());
    }
    catch (const EFormatError&) {                   // not whole
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const std::string_view Bytes(reinterpret_cast<const char*>(Data), Size);
    CheckText(Bytes);
    CheckCalculated(Bytes);
    if (Bytes.size() > TMdbDecimal::Size)
        CheckDecimal(Bytes);
    return 0;
}
