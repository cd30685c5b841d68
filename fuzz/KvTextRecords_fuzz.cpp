// Any bytes as a text file that is read through a window of any size: its records are those of a window that
// holds it all, they come again from the start, and they are where they are said to be in the file.
//
//   input := piece:u8 extensions:u8 fixed:u8 separator:u8 text
#include "KvTextRecords.h"

#include <string>
#include <vector>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"
#include "KviTypes.h"

namespace {

using namespace kv;

constexpr std::string_view Separators[] = {"\r\n", "\n", "\r", "", "<|>", "\"\n"};

/// What reading has come to: the records, each with its places, or why there are none.
std::vector<std::string> Read(std::size_t PieceSize, const TMemoryFile& File, const TKvTextLayout& Layout,
                              std::string_view Text)
{
    std::vector<std::string> Result;
    try {
        TKvTextRecords Records(PieceSize);
        Records.Load(File.Name(), Layout, {.First = 1, .Last = RowLastMax}, {});
        for (int Round = 0; Round < 2; ++Round)
            for (Records.GoFirst(); Records.HasRecord(); Records.GoNext()) {
                const auto Line = Records.Line();
                const auto Offset = Records.Offset();
                Require(Offset < 0 || Text.substr(static_cast<std::size_t>(Offset)).starts_with(Line));
                Result.push_back(std::to_string(Records.Number()) + " " +
                                 std::to_string(Records.PlainNumber()) + " " + std::to_string(Offset) + " " +
                                 std::string(Line));
            }
        Require(Result.size() == 2 * Records.Count());
        Result.push_back(Records.Header() + Records.Delimiter() + (Records.IsClosed() ? "closed" : "open"));
    }
    catch (const Exception& Error) {
        Result = {Error.Message};
    }
    return Result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const std::size_t PieceSize = std::size_t{Input.Take<std::uint8_t>()} + 1;
    const auto Extensions = Input.Take<std::uint8_t>();
    const TKvTextLayout Layout{.Fixed = (Input.Take<std::uint8_t>() & 1) != 0,
                               .Delimiter = ',',
                               .Qualifier = '"',
                               .Separator = Input.TakeOneOf(Separators),
                               .Extensions = TKvITextExtensions::FromBits(Extensions & 127),
                               .NoEmptyRecords = (Extensions & 128) != 0};
    const auto Text = Input.TakeRest();
    const TMemoryFile File(Text);
    Require(Read(PieceSize, File, Layout, Text) == Read(std::size_t{1} << 20, File, Layout, Text));
    return 0;
}
