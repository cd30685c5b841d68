// Any text cut into lines: each lies in the text behind the one before it, and they are those that a
// plain reading finds.
//
//   input := separator:u8 qualifier:u8 text
#include "KvTextLines.h"

#include <string>

#include "KvFuzz.h"
#include "KvTextReference.h"

namespace {

using namespace kv;
using namespace std::string_view_literals;

constexpr std::string_view Separators[] = {"\r\n", "\n", "\r", "", "\n\r\n", "\"\n", "abcdef"};
constexpr std::string_view Qualifiers[] = {"\"", "'", "", "\0"sv, "\n", "\"'"};

reference::TRow Cut(std::string_view Text, const TKvTextLineRules& Rules)
{
    reference::TRow Result;
    const char* Free = Text.data();
    const char* const End = Text.data() + Text.size();
    TKvTextLines Lines(Text, Rules);
    while (Lines.Next()) {
        const auto Line = Lines.Line();
        Require(Line.data() >= Free && Line.data() + Line.size() <= End);
        Free = Line.data() + Line.size();
        Require(Lines.Offset() <= Text.size() && Text.data() + Lines.Offset() >= Free);
        Result.emplace_back(Line);
        Require(Lines.Number() == Result.size());
    }
    Require(Lines.Offset() == Text.size());
    Require(!Lines.Unclosed() || (Rules.DoubledQualifiers && Free == End));
    return Result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const auto Separator = Input.TakeOneOf(Separators);
    const auto Qualifier = Input.TakeOneOf(Qualifiers);
    const auto Text = Input.TakeRest();
    Require(Cut(Text, {.Separator = Separator, .Qualifier = Qualifier}) ==
            reference::Lines(Text, Separator, Qualifier));
    // Of values the plain reading knows more than of lines, see the target of fields.
    Cut(Text, {.Separator = Separator, .Qualifier = Qualifier, .DoubledQualifiers = true, .Delimiter = ','});
    return 0;
}
