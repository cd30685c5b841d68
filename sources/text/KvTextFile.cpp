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

} // namespace

TKvTextFile::TKvTextFile(const std::string& FileName, TKvByteOrderMark Mark, std::size_t MaxSize,
                         const std::function<bool()>& Continue)
{
    Read(FileName, MaxSize, Continue);
    if (Mark == bmIsText)
        return;
    const auto Found = std::ranges::find_if(Marks, [this](const TMark& Each) { return FText.starts_with(Each.Bytes); });
    if (Found == std::end(Marks))
        return;
    if (!FIsWhole && Found->CodePage != Utf8)
        Read(FileName, WholeFile, Continue);
    FText.remove_prefix(std::min(FText.size(), Found->Bytes.size()));
    if (Found->CodePage != AnsiCodePage())
        Decode(FileName, Found->CodePage);
}

void TKvTextFile::Read(const std::string& FileName, std::size_t MaxSize, const std::function<bool()>& Continue)
{
    Bytes = ReadFileBytes(FileName, MaxSize, Continue);
    FText = Bytes.View();
    FIsWhole = FText.size() < MaxSize;
}

void TKvTextFile::Decode(const std::string& FileName, std::string_view CodePage)
{
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
