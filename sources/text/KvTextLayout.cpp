#include "KvTextLayout.h"

#include "Kvi2txt.h"

namespace kv {

TKvTextLines TKvTextLayout::LineCutter(std::string_view Text) const
{
    const bool Doubled = Extensions.Contains(xtDoubledQualifiers);
    const char Character = Qualifier.value_or('\0');
    // By the older reading a zero byte, too, hides line ends.
    const bool Hides = Qualifier && !(Doubled && (Fixed || Character == '\0'));
    return TKvTextLines(Text, {.Separator = Separator,
                               .Qualifier = {&Character, Hides ? std::size_t{1} : 0},
                               .DoubledQualifiers = Doubled,
                               .Delimiter = Delimiter});
}

TKvTextFields TKvTextLayout::FieldCutter() const
{
    return TKvTextFields(Delimiter, Qualifier.value_or('\0'), Extensions.Contains(xtDoubledQualifiers));
}

TKvTextLayout LayoutOf(const TKvImportFromText& Import)
{
    return {.Fixed = Import.Fixed,
            .Delimiter = Import.GetFieldDelimiterCustom(),
            .Qualifier = Import.GetTextQualifierCustom(),
            .Separator = Import.GetRecordSeparatorCustom(),
            .Extensions = Import.Extensions};
}

} // namespace kv
