#include "KvTableText.h"

#include "KvCodePage.h"
#include "KvCodePageCatalog.h"
#include "KvException.h"
#include "KvText.h"
#include "KvUtf8.h"

namespace kv {

std::string_view TKvTableText::Convert(std::string_view Stored)
{
    if (PageName.empty() || IsAscii(Stored))
        return Stored;
    if (!Page)
        Page = &CodePageNamed(PageName);
    Buffer.clear();
    if (!Page->Decode(Stored, Page->IsSingleByte() ? ubStandIn : ubRefuse, Buffer))
        throw EConvertError(FormatText("Text is not valid in code page '%s'", {PageName}));
    if (!AnsiIsUtf8())
        Buffer = Utf8ToAnsi(Buffer);
    return Buffer;
}

TVariant TKvTableText::Value(std::string_view Stored)
{
    const auto Text = Convert(Stored);
    return Text.data() == Stored.data() ? TVariant::Borrow(Stored) : TVariant(Text);
}

} // namespace kv
