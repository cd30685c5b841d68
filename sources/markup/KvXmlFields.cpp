#include "KvXmlFields.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::int64_t MaxWidth = std::numeric_limits<int>::max();

struct TTypeRow
{
    std::string_view Name, SubType;                 // an empty SubType stands for all that have no row
    TFieldType DataType;
};

constexpr TTypeRow Types[] = {
    {"i1", "", ftSmallint},
    {"i2", "", ftSmallint},
    {"i4", "Autoinc", ftAutoInc},
    {"i4", "", ftInteger},
    {"i8", "", ftLargeint},
    {"ui1", "", ftWord},
    {"ui2", "", ftWord},
    {"ui4", "", ftLargeint},
    {"r4", "", ftFloat},
    {"r8", "Money", ftCurrency},
    {"r8", "", ftFloat},
    {"fixed", "", ftBCD},
    {"fixedFMT", "", ftBCD},
    {"boolean", "", ftBoolean},
    {"date", "", ftDate},
    {"time", "", ftTime},
    {"dateTime", "", ftDateTime},
    {"SQLdateTime", "", ftDateTime},
    {"string", "FixedChar", ftFixedChar},
    {"string", "Guid", ftGuid},
    {"string", "", ftString},
    {"string.uni", "", ftString},
    {"bin.hex", "Text", ftMemo},
    {"bin.hex", "WideText", ftMemo},
    {"bin.hex", "Formatted", ftMemo},
    {"bin.hex", "", ftBlob},                        // in base64
};

TFieldType TypeNamed(std::string_view Name, std::string_view SubType)
{
    const auto Fits = [&](const TTypeRow& Row) {
        return SameText(Row.Name, Name) && (Row.SubType.empty() || SameText(Row.SubType, SubType));
    };
    const auto* const Found = std::ranges::find_if(Types, Fits);
    return Found != std::end(Types) ? Found->DataType : ftUnknown;
}

std::string_view ValueOf(std::string_view Name, const TKvXmlAttributes& Attributes)
{
    const auto* const Found = TKvXmlColumn(Name, true).FindIn(Attributes);
    return Found && Found->Closed ? Found->Value : std::string_view();
}

} // namespace

TKvXmlField DeclaredXmlField(std::string Name, const TKvXmlAttributes& Attributes)
{
    TKvXmlField Field{.Name = std::move(Name), .TypeName = std::string(ValueOf("fieldtype", Attributes))};
    Field.DataType = TypeNamed(Field.TypeName, ValueOf("SUBTYPE", Attributes));
    if (Field.DataType == ftString || Field.DataType == ftFixedChar) {
        const auto Width = TryTextToInt(ValueOf("WIDTH", Attributes)).value_or(0);
        Field.Size = Width > 0 && Width <= MaxWidth ? static_cast<int>(Width) : 0;
    }
    return Field;
}

} // namespace kv
