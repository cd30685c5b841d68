#include "KvTextFile.h"

#include <algorithm>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

struct TMark
{
    std::string_view Bytes;
    std::string_view CodePage;
};
constexpr std::string_view Utf8 = "UTF-8";
constexpr TMark Marks[] = {{"\xEF\xBB\xBF", Utf8}, {"\xFF\xFE", "UTF-16LE"}, {"\xFE\xFF", "UTF-16BE"}};

/// The mark that a text begins with, or none.
const TMark* FindMark(std::string_view Text)
{
    const auto Begins = [Text](const TMark& Each) { return Text.starts_with(Each.Bytes); };
    const auto Found = std::ranges::find_if(Marks, Begins);
    return Found == std::end(Marks) ? nullptr : Found;
}

} // namespace

std::string_view WithoutByteOrderMark(std::string_view Text)
{
    const auto* const Found = FindMark(Text);
    return Found ? Text.substr(Found->Bytes.size()) : Text;
}

TKvTextFile::TKvTextFile(const std::string& FileName, TKvByteOrderMark Mark, std::size_t MaxSize,
                         const std::function<bool()>& Continue)
{
    Read(FileName, MaxSize, Continue);
    const auto* const Found = Mark == bmTellsEncoding ? FindMark(FText) : nullptr;
    if (!Found)
        return;
    if (!FIsWhole && Found->CodePage != Utf8)
        Read(FileName, WholeFile, Continue);
    FText.remove_prefix(std::min(FText.size(), Found->Bytes.size()));
    Decode(FileName, std::string(Found->CodePage));
}

TKvTextFile::TKvTextFile(const std::string& FileName, TKvFindEncoding Declared,
                         const std::function<bool()>& Continue)
{
    Read(FileName, WholeFile, Continue);
    if (const auto* const Found = FindMark(FText)) {
        FText.remove_prefix(Found->Bytes.size());
        Decode(FileName, std::string(Found->CodePage));
    }
    else if (const auto Name = Declared(FText); !Name.empty()) {
        Decode(FileName, std::string(Name));
    }
}

void TKvTextFile::Read(const std::string& FileName, std::size_t MaxSize, const std::function<bool()>& Continue)
{
    Bytes = ReadFileBytes(FileName, MaxSize, Continue);
    FText = Bytes.View();
    FIsWhole = FText.size() < MaxSize;
}

void TKvTextFile::Decode(const std::string& FileName, const std::string& CodePage)
{
    if (SameText(CodePage, AnsiCodePage()))
        return;
    try {
        Decoded = Utf8ToAnsi(CodePageToUtf8(FText, CodePage));
    }
    catch (const EConvertError&) {                  // its message may hold the whole text
        throw EConvertError(FormatText("Cannot convert the text of file \"%s\" from %s to %s",
                                       {FileName, CodePage, AnsiCodePage()}));
    }
    FText = Decoded;
    Bytes = {};
}

} // namespace kv
