#include "KvCodePage.h"

#include <atomic>
#include <utility>

#include "KvCodePageCatalog.h"
#include "KvException.h"
#include "KvText.h"
#include "KvUtf16.h"
#include "KvUtf8.h"

namespace kv {

namespace {

/// A code page that the program may set.
class TPageSetting
{
public:
    explicit TPageSetting(std::string InitialName)
        : FName(std::move(InitialName)), FPage(&CodePageNamed(FName)) {}

    const std::string& Name() const { return FName; }
    const TCodePage& Page() const { return *FPage; }
    void Set(std::string_view NewName)
    {
        FPage = &CodePageNamed(NewName);
        FName = NewName;
    }

private:
    std::string FName;
    const TCodePage* FPage;
};

TPageSetting& Ansi()
{
    static TPageSetting Setting("UTF-8");
    return Setting;
}

TPageSetting& Oem()
{
    static TPageSetting Setting("437");
    return Setting;
}

TPageSetting& Legacy()
{
    static TPageSetting Setting("windows-1252");
    return Setting;
}

std::atomic<std::int64_t> LegacyTexts = 0;          // that AnsiToUtf8 has met

[[noreturn]] void RaiseNoText(std::string_view PageName)
{
    throw EConvertError(FormatText("Text is not valid in code page '%s'", {PageName}));
}

std::string DecodeOrRaise(std::string_view Text, const TCodePage& Page, std::string_view PageName)
{
    std::string Result;
    if (!Page.Decode(Text, ubRefuse, Result))
        RaiseNoText(PageName);
    return Result;
}

/// UTF-8 as process text; when that is UTF-8 too, nothing happens to it.
std::string ToAnsi(std::string Utf8)
{
    const auto& Page = Ansi().Page();
    if (Page.IsUtf8())
        return Utf8;
    if (!IsValidUtf8(Utf8))
        RaiseNoText("UTF-8");
    std::string Result;
    if (!Page.Encode(Utf8, Result))
        throw EConvertError(FormatText("'%s' has a character that does not exist in code page '%s'",
                                       {Utf8, AnsiCodePage()}));
    return Result;
}

} // namespace

bool AnsiIsUtf8() { return Ansi().Page().IsUtf8(); }

const std::string& AnsiCodePage() { return Ansi().Name(); }
const std::string& OemCodePage() { return Oem().Name(); }
const std::string& LegacyCodePage() { return Legacy().Name(); }

void SetAnsiCodePage(std::string_view Name) { Ansi().Set(Name); }
void SetOemCodePage(std::string_view Name) { Oem().Set(Name); }
void SetLegacyCodePage(std::string_view Name) { Legacy().Set(Name); }

std::string OemToAnsi(std::string_view Text)
{
    if (&Oem().Page() == &Ansi().Page())
        return std::string(Text);
    return ToAnsi(DecodeOrRaise(Text, Oem().Page(), OemCodePage()));
}

std::string Utf16ToAnsi(std::u16string_view Text)
{
    return ToAnsi(Utf16ToUtf8(Text));
}

std::string_view AnsiToUtf8(std::string_view Text, std::string& Buffer)
{
    const auto& Page = Ansi().Page();
    if (Page.IsSameInUtf8(Text))
        return Text;
    Buffer.clear();
    if (Page.IsUtf8())
        LegacyTexts.fetch_add(1, std::memory_order_relaxed);
    (Page.IsUtf8() ? Legacy().Page() : Page).Decode(Text, ubStandIn, Buffer);
    return Buffer;
}

std::int64_t LegacyTextCount()
{
    return LegacyTexts.load(std::memory_order_relaxed);
}

std::string Utf8ToAnsi(std::string_view Text) { return ToAnsi(std::string(Text)); }

std::string CodePageToUtf8(std::string_view Text, std::string_view CodePage)
{
    return DecodeOrRaise(Text, CodePageNamed(CodePage), CodePage);
}

} // namespace kv
