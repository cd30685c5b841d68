#include "KvTextFile.h"

#include <algorithm>
#include <utility>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

std::string_view WholeUtf8(std::string_view Text)
{
    const auto IsContinuation = [](char Byte) { return (Byte & 0xC0) == 0x80; };
    std::size_t Last = Text.size();                 // where the last character begins, and one past that
    while (Last > 0 && Text.size() - Last < 3 && IsContinuation(Text[Last - 1]))
        --Last;
    if (Last == 0)
        return Text;
    const auto First = static_cast<unsigned char>(Text[Last - 1]);
    const std::size_t Length = First >= 0xF0 ? 4 : First >= 0xE0 ? 3 : First >= 0xC0 ? 2 : 1;
    return Text.size() - Last + 1 < Length ? Text.substr(0, Last - 1) : Text;
}

/// `HighByte` is its place in each pair.
template <std::size_t HighByte> std::string_view WholeUtf16(std::string_view Text)
{
    Text = Text.substr(0, Text.size() / 2 * 2);
    const bool EndsInHalf = !Text.empty() && (Text[Text.size() - 2 + HighByte] & 0xFC) == 0xD8;
    return EndsInHalf ? Text.substr(0, Text.size() - 2) : Text;
}

constexpr std::string_view Utf8 = "UTF-8";
constexpr TKvMark Marks[] = {{"\xEF\xBB\xBF", Utf8, WholeUtf8},
                           {"\xFF\xFE", "UTF-16LE", WholeUtf16<1>},
                           {"\xFE\xFF", "UTF-16BE", WholeUtf16<0>}};

/// Process text. `HasStandIns` tells whether bytes without a meaning were replaced.
std::string Convert(const std::string& FileName, std::string_view Text, std::string_view CodePage,
                    TUndefinedBytes Undefined, bool& HasStandIns)
{
    try {
        std::string Result;
        const auto& Page = CodePageNamed(CodePage);
        if (!Page.Decode(Text, ubRefuse, Result)) {
            if (Undefined == ubRefuse)
                throw EConvertError(std::string());
            Result.clear();
            HasStandIns = true;
            Page.Decode(Text, ubStandIn, Result);
        }
        return AnsiIsUtf8() ? Result : Utf8ToAnsi(Result);
    }
    catch (const EConvertError&) {                  // its message may hold the whole text
        throw EConvertError(FormatText("Cannot convert the text of file \"%s\" from %s to %s",
                                       {FileName, CodePage, AnsiCodePage()}),
                            {.FileName = FileName, .Rule = erFormat});
    }
}

} // namespace

const TKvMark* FindByteOrderMark(std::string_view Text)
{
    const auto Begins = [Text](const TKvMark& Each) { return Text.starts_with(Each.Bytes); };
    const auto Found = std::ranges::find_if(Marks, Begins);
    return Found == std::end(Marks) ? nullptr : Found;
}

std::string_view WithoutByteOrderMark(std::string_view Text)
{
    const auto* const Found = FindByteOrderMark(Text);
    return Found ? Text.substr(Found->Bytes.size()) : Text;
}

std::string DecodeText(const std::string& FileName, std::string_view Text, std::string_view CodePage)
{
    bool HasStandIns = false;
    return Convert(FileName, Text, CodePage, ubRefuse, HasStandIns);
}

TKvTextFile::TKvTextFile(const std::string& FileName, TKvByteOrderMark Mark, std::size_t MaxSize,
                         const std::function<bool()>& Continue)
{
    Read(FileName, MaxSize, Continue);
    const auto* const Found = Mark == bmTellsEncoding ? FindByteOrderMark(FText) : nullptr;
    if (!Found)
        return;
    DropMark(Found->Bytes.size());
    if (!FIsWhole)
        FText = Found->WholeCharacters(FText);
    Decode(FileName, Found->CodePage, ubRefuse);
}

TKvTextFile::TKvTextFile(const std::string& FileName, const TKvFindEncoding& Declared,
                         const std::function<bool()>& Continue)
{
    Read(FileName, WholeFile, Continue);
    if (const auto* const Found = FindByteOrderMark(FText)) {
        DropMark(Found->Bytes.size());
        Decode(FileName, Found->CodePage, ubStandIn);
    }
    else if (const auto Name = Declared(FText); !Name.empty()) {
        Decode(FileName, Name, ubStandIn);
    }
}

void TKvTextFile::Read(const std::string& FileName, std::size_t MaxSize,
                       const std::function<bool()>& Continue)
{
    Bytes = ReadFileBytes(FileName, MaxSize, Continue);
    FText = Bytes.View();
    FIsWhole = FText.size() < MaxSize;
}

void TKvTextFile::DropMark(std::size_t Size)
{
    FText.remove_prefix(Size);
    FOffset = static_cast<std::int64_t>(Size);
}

void TKvTextFile::Decode(const std::string& FileName, std::string_view CodePage, TUndefinedBytes Undefined)
{
    FEncoding = CodePage;
    if (SameText(CodePage, AnsiCodePage()))
        return;
    Decoded = Convert(FileName, FText, CodePage, Undefined, FHasStandIns);
    FText = Decoded;
    FOffset = -1;
    Bytes = {};
}

} // namespace kv
