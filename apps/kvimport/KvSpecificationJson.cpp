// The specification for scripts. Names are as stable as options.
#include "KvSpecificationReport.h"

#include <string>
#include <vector>

#include "KvDisplayText.h"
#include "KvImportOptions.h"
#include "KvJobFormats.h"
#include "KvJson.h"
#include "KvSpecification.h"
#include "KvText.h"
#include "Kvibase.h"

namespace kv {

namespace {

/// A character as it is; none for #0.
std::string CharacterJson(char Value)
{
    return Value == '\0' ? std::string() : ToDisplay(std::string(1, Value));
}

TJson MappingsJson(const TStrings& Lines)
{
    auto List = TJson::array();
    for (int I = 0; I < Lines.Count(); ++I)
        List.push_back(
            {{"field", ToDisplay(Trim(Lines.NameAt(I)))}, {"column", ToDisplay(Trim(Lines.ValueAt(I)))}});
    return List;
}

TJson LayoutJson(const TSpecification& Specification)
{
    if (!Specification.HasLayout())
        return {};
    return {{"fixed", Specification.Text("Fixed") == "True"},
            {"delimiter", CharacterJson(Specification.Text("FieldDelimiterCustom").front())},
            {"qualifier", CharacterJson(Specification.Text("TextQualifierCustom").front())},
            {"recordSeparator", ToDisplay(Specification.Text("RecordSeparatorCustom"))}};
}

TJson FormatsJson(const TKvIDataFormats& Formats)
{
    return {{"dateOrder", NameOfDateOrder(Formats.DateOrder)},
            {"dateSeparator", CharacterJson(Formats.DateSeparator)},
            {"timeSeparator", CharacterJson(Formats.TimeSeparator)},
            {"decimalSeparator", CharacterJson(Formats.DecimalSeparator)},
            {"thousandSeparator", CharacterJson(Formats.ThousandSeparator)},
            {"fourDigitYear", Formats.FourDigitYear},
            {"leadingZerosInDate", Formats.LeadingZerosInDate}};
}

TJson NumberJson(const std::string& Text)
{
    return Text.empty() ? TJson() : TJson(std::stoll(Text));
}

} // namespace

void PrintSpecificationJson(std::ostream& Out, const TJobFile& Saved)
{
    const TSpecification Specification(Saved);
    const auto& Import = Saved.Import();
    const TJson Object = {{"file", Saved.FileName()},
                          {"name", TextOrNull(Saved.Name())},
                          {"application", TextOrNull(Saved.Application())},
                          {"kind", Specification.Kind()},
                          {"source", TextOrNull(Specification.Text("SourceFileName"))},
                          {"sheet", NumberJson(Specification.Sheet())},
                          {"table", TextOrNull(Specification.Table())},
                          {"firstRow", NumberJson(Specification.Text("RowFirst"))},
                          {"lastRow", NumberJson(Specification.Text("RowLast"))},
                          {"charset", Import.CharacterSet == csiASCII_MSDOS ? "msdos" : "ansi"},
                          {"layout", LayoutJson(Specification)},
                          {"formats", FormatsJson(Import.DataFormats)},
                          {"extensions", Specification.Extensions()},
                          {"mode", NameOfMode(Import.Mode)},
                          {"database", TextOrNull(Saved.Destination().Url)},
                          {"destinationTable", TextOrNull(Saved.Destination().Table)},
                          {"keys", TextList(Saved.Keys())},
                          {"mappings", MappingsJson(Import.Mappings())}};
    PrintJsonLine(Out, Object);
}

} // namespace kv
