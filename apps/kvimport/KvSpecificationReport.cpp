#include "KvSpecificationReport.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "KvDisplayText.h"
#include "KvImportOptions.h"
#include "KvJobFormats.h"
#include "KvOptionText.h"
#include "KvSpecification.h"
#include "KvTerminalText.h"
#include "KvText.h"
#include "Kvibase.h"

namespace kv {

namespace {

constexpr int TitleWidth = 12;

/// The published character `Property` in words.
std::string CharacterText(const TSpecification& Specification, std::string_view Property)
{
    const auto Text = Specification.Text(Property);
    return Text.empty() ? Text : NameOfCharacter(Text.front());
}

std::string LayoutText(const TSpecification& Specification)
{
    const auto Ends = "records end in " + NameOfRecordSeparator(Specification.Text("RecordSeparatorCustom"));
    if (Specification.Text("Fixed") == "True")
        return "values at fixed positions, " + Ends;
    return "delimiter " + CharacterText(Specification, "FieldDelimiterCustom") + ", qualifier " +
           CharacterText(Specification, "TextQualifierCustom") + ", " + Ends;
}

std::string RowsText(const TSpecification& Specification)
{
    const auto First = Specification.Text("RowFirst"), Last = Specification.Text("RowLast");
    return First.empty() ? First : First + " to " + (Last == std::to_string(RowLastMax) ? "the last" : Last);
}

std::string DestinationText(const TJobFile& Saved)
{
    const auto Keys = JoinNames(Saved.Keys());
    return "mode " + NameOfMode(Saved.Import().Mode) + (Keys.empty() ? "" : ", keys " + Keys);
}

class TPrinter
{
public:
    explicit TPrinter(std::ostream& Stream) : Out(Stream) {}

    /// Nothing for an empty text.
    void Line(const char* Title, const std::string& Text)
    {
        if (!Text.empty())
            Out << "  " << PadToWidth(Title, TitleWidth) << VisibleText(ToDisplay(Text)) << '\n';
    }

private:
    std::ostream& Out;
};

void PrintMappings(std::ostream& Out, const TStrings& Lines)
{
    if (Lines.IsEmpty()) {
        TPrinter(Out).Line("mappings", "none: columns and fields are joined by the rules of the component");
        return;
    }
    int Width = 0;
    for (int I = 0; I < Lines.Count(); ++I)
        Width = std::max(Width, DisplayWidth(VisibleText(ToDisplay(Trim(Lines.NameAt(I))))));
    for (int I = 0; I < Lines.Count(); ++I) {
        const auto Field = VisibleText(ToDisplay(Trim(Lines.NameAt(I))));
        const auto Column = VisibleText(ToDisplay(Trim(Lines.ValueAt(I))));
        Out << "  " << PadToWidth(I == 0 ? "mappings" : "", TitleWidth) << PadToWidth(Field, Width) << " <- "
            << Column << '\n';
    }
}

} // namespace

void PrintSpecification(std::ostream& Out, const TJobFile& Saved)
{
    const TSpecification Specification(Saved);
    const auto& Import = Saved.Import();
    const auto& Formats = Import.DataFormats;
    Out << VisibleText(Saved.FileName()) << ": " << VisibleText(ToDisplay(Saved.Name()));
    if (!Saved.Application().empty())
        Out << ", saved by " << VisibleText(ToDisplay(Saved.Application()));
    Out << '\n';
    TPrinter Printer(Out);
    Printer.Line("source",
                 Specification.Text("SourceFileName") + " (" + std::string(Specification.Kind()) + ")");
    Printer.Line("sheet", Specification.Sheet());
    Printer.Line("table", Specification.Table());
    if (Specification.HasLayout())
        Printer.Line("layout", LayoutText(Specification));
    Printer.Line("rows", RowsText(Specification));
    Printer.Line("text", Import.CharacterSet == csiASCII_MSDOS ? "OEM code page" : "ANSI code page");
    Printer.Line("dates", NameOfDateOrder(Formats.DateOrder) + ", separator " +
                              NameOfCharacter(Formats.DateSeparator));
    Printer.Line("times", "separator " + NameOfCharacter(Formats.TimeSeparator));
    Printer.Line("numbers", "decimal separator " + NameOfCharacter(Formats.DecimalSeparator) +
                                ", thousand separator " + NameOfCharacter(Formats.ThousandSeparator));
    Printer.Line("extensions", JoinNames(Specification.Extensions()));
    Printer.Line("records", DestinationText(Saved));
    if (const auto& To = Saved.Destination(); !To.Url.empty())
        Printer.Line("into", To.Url + (To.Table.empty() ? "" : ", table " + To.Table));
    PrintMappings(Out, Import.Mappings());
}

} // namespace kv
