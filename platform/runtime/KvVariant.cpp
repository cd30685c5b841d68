#include "KvVariant.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "KvDateText.h"
#include "KvException.h"
#include "KvNumberText.h"

namespace kv {

class TVariantArray
{
public:
    int Low = 0;
    std::vector<TVariant> Items;

    const TVariant& At(int Index) const
    {
        const auto Offset = static_cast<std::int64_t>(Index) - Low;
        if (Offset < 0 || Offset >= std::ssize(Items))
            throw EConvertError("Variant array index out of bounds");
        return Items[static_cast<std::size_t>(Offset)];
    }

    friend bool operator==(const TVariantArray&, const TVariantArray&) = default;
};

namespace {

/// An integral amount of the scale of TCurrency, unless that leaves the range.
std::optional<std::int64_t> ScaledOf(std::int64_t Integer)
{
    std::int64_t Scaled;
    if (__builtin_mul_overflow(Integer, TCurrency::Scale, &Scaled))
        return {};
    return Scaled;
}

/// True when the double stands for exactly this integer: a conversion of the integer might round.
bool EqualsInteger(double Value, std::int64_t Integer)
{
    constexpr double Limit = 9223372036854775808.0; // 2 to the 63rd
    return Value >= -Limit && Value < Limit && Value == std::trunc(Value) &&
           static_cast<std::int64_t>(Value) == Integer;
}

constexpr bool IsNumber(TVariantKind Kind) { return Kind >= vkInteger && Kind <= vkCurrency; }

/// Equality of two numbers of different kinds, `A` of the lower one.
bool NumbersEqual(const TVariant& A, const TVariant& B)
{
    if (B.Kind() == vkDouble)
        return EqualsInteger(B.Double(), A.Integer());
    if (A.Kind() == vkInteger)
        return ScaledOf(A.Integer()) == B.Currency().Scaled;
    return A.Double() == B.Currency().ToDouble();
}

} // namespace

TCurrency TCurrency::FromDouble(double Value)
{
    constexpr double Limit = 9223372036854775808.0; // 2 to the 63rd
    const double Scaled = std::round(Value * static_cast<double>(Scale));
    if (!(Scaled >= -Limit && Scaled < Limit))
        throw EConvertError(FormatText("'%s' is not a valid currency value", {FloatToText(Value)}));
    return {static_cast<std::int64_t>(Scaled)};
}

TVariant TVariant::Array(int Low, int High)
{
    const auto Size = static_cast<std::int64_t>(High) - Low + 1;
    if (Size < 0)
        throw EConvertError("Variant array bounds are out of order");
    auto* const Elements = new TVariantArray{Low, std::vector<TVariant>(static_cast<std::size_t>(Size))};
    return TVariant(vkArray, Elements);
}

void TVariant::SetLongText(std::string_view Text)
{
    auto Long = FShortSize == LongMark ? LongText() : TLongText{};
    if (Long.Capacity != 0 && Long.Capacity >= Text.size()) {
        CopyChars(const_cast<char*>(Long.Data), Text);
        Long.Size = Text.size();
        Store(Long);
        return;
    }
    TVariant Old;                                   // dies last: Text may stand in its storage
    Old.TakeFrom(*this);
    if (Text.size() <= ShortTextMax) {
        SetShortText(Text);
        return;
    }
    // The first storage fits exactly, as records keep it; what had to grow once may grow again.
    const auto Capacity = std::max(Text.size(), Long.Capacity * 3 / 2);
    auto* const Data = new char[Capacity];
    CopyChars(Data, Text);
    Store(TLongText{Data, Text.size(), Capacity});
    FKind = vkString;
    FShortSize = LongMark;
}

void TVariant::Assign(const TVariant& Other)
{
    if (this == &Other)
        return;
    if (Other.IsString())
        SetText(Other.Text());
    else if (Other.IsArray())
        *this = TVariant(vkArray, new TVariantArray(Other.Elements()));
    else
        *this = TVariant(Other);
}

void TVariant::Free() noexcept
{
    if (FKind == vkArray)
        delete Load<TVariantArray*>();
    else
        delete[] LongText().Data;
}

std::string TVariant::ToText() const
{
    switch (FKind) {
    case vkEmpty:
    case vkNull:     return {};
    case vkInteger:  return std::to_string(Integer());
    case vkDouble:   return FloatToText(Double());
    case vkCurrency: return CurrencyToText(Currency());
    case vkDateTime: return DateTimeToText(DateTime());
    case vkBoolean:  return Boolean() ? "True" : "False";
    case vkString:   return std::string(Text());
    case vkArray:    break;
    }
    throw EConvertError("A variant array has no text form");
}

const TVariantArray& TVariant::Elements() const
{
    if (FKind != vkArray)
        throw EConvertError("Variant is not an array");
    return *Load<const TVariantArray*>();
}

int TVariant::LowBound() const { return Elements().Low; }

int TVariant::HighBound() const { return Elements().Low + static_cast<int>(Elements().Items.size()) - 1; }

const TVariant& TVariant::operator[](int Index) const { return Elements().At(Index); }

TVariant& TVariant::operator[](int Index) { return const_cast<TVariant&>(Elements().At(Index)); }

bool operator==(const TVariant& A, const TVariant& B)
{
    if (A.FKind != B.FKind)
        return IsNumber(A.FKind) && IsNumber(B.FKind) &&
               (A.FKind < B.FKind ? NumbersEqual(A, B) : NumbersEqual(B, A));
    switch (A.FKind) {
    case vkEmpty:
    case vkNull:     return true;
    case vkInteger:
    case vkCurrency:
    case vkBoolean:  return A.Load<std::int64_t>() == B.Load<std::int64_t>();
    case vkDouble:
    case vkDateTime: return A.Load<double>() == B.Load<double>();
    case vkString:   return A.Text() == B.Text();
    case vkArray:    return A.Elements() == B.Elements();
    }
    return false;
}

} // namespace kv
