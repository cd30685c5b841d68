#include "KvTextLayout.h"

#include <algorithm>

#include "Kvi2txt.h"

namespace kv {

TKvTextLines TKvTextLayout::LineCutter() const
{
    const bool Doubled = Extensions.Contains(xtDoubledQualifiers);
    const char Character = Qualifier.value_or('\0');
    // By the older reading a zero byte, too, hides line ends.
    const bool Hides = Qualifier && !(Doubled && (Fixed || Character == '\0'));
    const bool Whole = Separator.size() > 1 && Separator != "\r\n";
    return TKvTextLines({.Separator = Separator,
                         .Qualifier = {&Character, Hides ? std::size_t{1} : 0},
                         .DoubledQualifiers = Doubled,
                         .Delimiter = Delimiter,
                         .WholeSeparator = Whole && Extensions.Contains(xtWholeSeparator)});
}

TKvTextFields TKvTextLayout::FieldCutter() const
{
    return TKvTextFields(Delimiter, Qualifier.value_or('\0'), Extensions.Contains(xtDoubledQualifiers));
}

/// Of a line that begins as if it held none.
bool TKvTextLayout::HoldsNothing(std::string_view Line) const
{
    const auto IsBlank = [](std::string_view Text) { return Text.find_first_not_of(" \t\x1A") == Text.npos; };
    const auto Holds = [this](char Each) { return !MayBeEmpty(Each); };
    if (Fixed)
        return IsBlank(Line);
    if (std::ranges::any_of(Line, Holds))           // most lines are told by a character or two
        return false;
    auto Fields = FieldCutter();
    Fields.Split(Line);
    // By the older reading the last value of a line that ends in a delimiter still has it.
    const std::string_view None(&Delimiter, Extensions.Contains(xtDoubledQualifiers) ? 0 : 1);
    for (std::size_t I = 0; I < Fields.Count(); ++I)
        if (const auto Value = Fields.Value(I); !IsBlank(Value) && Value != None)
            return false;
    return true;
}

TKvTextLayout LayoutOf(const TKvImportFromText& Import)
{
    return {.Fixed = Import.Fixed,
            .Delimiter = Import.GetFieldDelimiterCustom(),
            .Qualifier = Import.GetTextQualifierCustom(),
            .Separator = Import.GetRecordSeparatorCustom(),
            .Extensions = Import.Extensions,
            .NoEmptyRecords = Import.RunExtensions.Contains(rxNoEmptyRecords)};
}

} // namespace kv
