#include "KvMdbText.h"

#include <algorithm>
#include <cstddef>

#include "KvException.h"
#include "KvUtf16.h"
#include "KvUtf8.h"

namespace kv {

namespace {

constexpr std::string_view CompressionMark = "\xFF\xFE";

[[noreturn]] void RaiseHalf()
{
    throw EFormatError("its text ends within a character");
}

/// The bytes before the zero byte that ends a run of pairs, or all.
std::size_t PairsBeforeSwitch(std::string_view Bytes)
{
    std::size_t Size = 0;
    while (Size < Bytes.size() && Bytes[Size] != '\0')
        Size += 2;
    if (Size > Bytes.size())
        RaiseHalf();
    return Size;
}

void AppendCompressed(std::string_view Bytes, std::string& Utf8)
{
    for (bool IsLatin = true; !Bytes.empty(); IsLatin = !IsLatin) {
        const auto Size = IsLatin ? std::min(Bytes.find('\0'), Bytes.size()) : PairsBeforeSwitch(Bytes);
        if (IsLatin)
            AppendLatin1AsUtf8(Bytes.substr(0, Size), Utf8);
        else
            AppendUtf16AsUtf8(Bytes.substr(0, Size), Utf8);
        Bytes.remove_prefix(std::min(Size + 1, Bytes.size()));
    }
}

} // namespace

std::string_view ReadUnicodeText(std::string_view Bytes, std::string& Storage)
{
    Storage.clear();
    if (Bytes.starts_with(CompressionMark))
        AppendCompressed(Bytes.substr(CompressionMark.size()), Storage);
    else if (Bytes.size() % 2 == 0)
        AppendUtf16AsUtf8(Bytes, Storage);
    else
        RaiseHalf();
    return Storage;
}

} // namespace kv
