// Numbers from any text: what is read must be written and read again as the same number.
#include "KvNumberText.h"

#include <cmath>

#include "KvFormatSettings.h"
#include "KvFuzz.h"

namespace {

using namespace kv;

void CheckInteger(std::string_view Text)
{
    const auto Integer = TryTextToInt(Text);
    if (!Integer)
        return;
    Require(TryTextToInt(std::to_string(*Integer)) == Integer);
    Require(TryTextToFloat(Text) == static_cast<double>(*Integer));
}

void CheckFloat(double Value)
{
    if (std::isfinite(Value))
        Require(TryTextToFloat(FloatToText(Value)) == Value);
    else
        Require(!TryTextToFloat(FloatToText(Value)));
}

void CheckCurrency(std::string_view Text)
{
    const auto Amount = TryTextToCurrency(Text);
    if (!Amount)
        return;
    Require(TryTextToCurrency(CurrencyToText(*Amount)) == Amount);
    Require(TryTextToFloat(Text) == TryTextToFloat(CurrencyToText(*Amount)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    FormatSettings().DecimalSeparator = Input.TakeOneOf({'.', ',', '\''});
    const auto Text = Input.TakeRest();
    CheckInteger(Text);
    CheckCurrency(Text);
    if (const auto Value = TryTextToFloat(Text)) {
        Require(std::isfinite(*Value));
        CheckFloat(*Value);
    }
    CheckFloat(Input.Take<double>());
    return 0;
}
