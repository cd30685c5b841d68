#include "KvTableText.h"

#include "KvCodePage.h"
#include "KvCodePageCatalog.h"
#include "KvException.h"
#include "KvText.h"
#include "KvUtf8.h"

namespace kv {

std::string_view TKvTableText::Convert(std::string_view Stored)
{
    if (PageName.empty()) {
        Notice(Stored);
        return Stored;
    }
    if (IsAscii(Stored))
        return Stored;
    Buffer.clear();
    if (!OwnPage().Decode(Stored, OwnPage().IsSingleByte() ? ubStandIn : ubRefuse, Buffer))
        throw EConvertError(FormatText("Text is not valid in code page '%s'", {PageName}));
    if (!AnsiIsUtf8())
        Buffer = Utf8ToAnsi(Buffer);
    return Buffer;
}

TVariant TKvTableText::Unconverted(std::string_view Stored)
{
    Notice(Stored);
    return TVariant::Borrow(Stored);
}

void TKvTableText::Notice(std::string_view Stored)
{
    if (Watches && !Guessed)
        Guessed = AnsiIsUtf8() && !IsValidUtf8(Stored);
}

bool TKvTableText::IsSingleByte()
{
    return PageName.empty() || OwnPage().IsSingleByte();
}

const TCodePage& TKvTableText::OwnPage()
{
    if (!Page)
        Page = &CodePageNamed(PageName);
    return *Page;
}

TVariant TKvTableText::Value(std::string_view Stored)
{
    const auto Text = Convert(Stored);
    return Text.data() == Stored.data() ? TVariant::Borrow(Stored) : TVariant(Text);
}

} // namespace kv
