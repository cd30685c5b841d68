// Any text cut into lines and values, by both readings of qualifiers: the values are those that a plain
// reading finds.
//
//   input := separator:u8 delimiter:u8 qualifier:u8 text
#include "KvTextFields.h"

#include <string>
#include <vector>

#include "KvFuzz.h"
#include "KvTextLines.h"
#include "KvTextReference.h"

namespace {

using namespace kv;

constexpr std::string_view Separators[] = {"\r\n", "\n", "\r"};
constexpr char Delimiters[] = {',', '\t', ';', '\0', '"'};
constexpr char Qualifiers[] = {'"', '\'', '\0', ','};

/// One line by the reading in which every qualifier switches.
void CheckLine(std::string_view Line, char Delimiter, char Qualifier)
{
    TKvTextFields Fields(Delimiter, Qualifier);
    Fields.Split(Line);
    const auto Expected = reference::Fields(Line, Delimiter, Qualifier);
    Require(Fields.Count() == Expected.size());
    for (std::size_t I = 0; I < Fields.Count(); ++I) {
        Require(Fields[I].Start + 1 == Expected[I].first && Fields[I].Stop == Expected[I].second);
        const auto Value = Fields.Value(I);
        const char* const LineEnd = Line.data() + Line.size();
        Require(Value.empty() || (Value.data() >= Line.data() && Value.data() + Value.size() <= LineEnd));
    }
}

/// A whole text by RFC 4180.
void CheckText(std::string_view Text, std::string_view Separator, char Delimiter, char Qualifier)
{
    const auto Expected = reference::Records(Text, Separator, Delimiter, Qualifier);
    const std::string QualifierText(Qualifier == '\0' ? 0 : 1, Qualifier);
    TKvTextLines Lines(Text, {.Separator = Separator,
                              .Qualifier = QualifierText,
                              .DoubledQualifiers = true,
                              .Delimiter = Delimiter});
    TKvTextFields Fields(Delimiter, Qualifier, true);
    std::size_t Row = 0;
    for (; Lines.Next(); ++Row) {
        Fields.Split(Lines.Line());
        Require(Row < Expected.Rows.size() && Fields.Count() == Expected.Rows[Row].size());
        for (std::size_t I = 0; I < Fields.Count(); ++I)
            Require(Fields.Value(I) == Expected.Rows[Row][I]);
    }
    Require(Row == Expected.Rows.size());
    Require((Lines.Unclosed() ? Lines.Number() : 0) == Expected.UnclosedLine);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const auto Separator = Input.TakeOneOf(Separators);
    const char Delimiter = Input.TakeOneOf(Delimiters);
    const char Qualifier = Input.TakeOneOf(Qualifiers);
    const auto Text = Input.TakeRest();
    CheckLine(Text, Delimiter, Qualifier);
    CheckText(Text, Separator, Delimiter, Qualifier);
    return 0;
}
