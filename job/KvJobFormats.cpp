#include "KvJobFormats.h"

#include "KvCodePage.h"
#include "KvFormatSettings.h"
#include "KvJobFindings.h"
#include "KviDataFormats.h"

namespace kv {

namespace {

std::string ShortDateFormat(const TKvIDataFormats& Formats)
{
    const std::string Separator(1, Formats.DateSeparator);
    switch (Formats.DateOrder) {
    case doMDY: return "MM" + Separator + "dd" + Separator + "yyyy";
    case doDMY: return "dd" + Separator + "MM" + Separator + "yyyy";
    case doYMD: return "yyyy" + Separator + "MM" + Separator + "dd";
    default:    Refuse({.Kind = jfDateOrder, .Value = NameOfDateOrder(Formats.DateOrder)});
    }
}

void UseCodePage(const char* Setting, const std::string& Name, void (*Set)(std::string_view))
{
    if (Name.empty())
        return;
    try {
        Set(Name);
    }
    catch (const EConvertError&) {
        Refuse({.Kind = jfCodePage, .Name = Setting, .Value = Name});
    }
}

} // namespace

bool NeedsKeys(TImportMode Mode)
{
    return Mode == imUpdate || Mode == imAppendUpdate || Mode == imDelete;
}

std::string NameOfDateOrder(TKvIDateOrder Order)
{
    static constexpr const char* Names[] = {"mdy", "dmy", "ymd", "ydm", "dym", "myd"}; // by ordinal
    return Names[Order];
}

void TakeFormats(const TKvIDataFormats& From, TJobFormats& Formats)
{
    const auto Take = [](auto& Option, auto Value) {
        if (!Option)
            Option = Value;
    };
    Take(Formats.DateOrder, From.DateOrder);
    Take(Formats.DateSeparator, From.DateSeparator);
    Take(Formats.TimeSeparator, From.TimeSeparator);
    Take(Formats.DecimalSeparator, From.DecimalSeparator);
    Take(Formats.ThousandSeparator, From.ThousandSeparator);
}

void SetFormats(const TJobFormats& Formats, TKvIDataFormats& Target)
{
    Target.DateOrder = Formats.DateOrder.value_or(doYMD);
    Target.DateSeparator = Formats.DateSeparator.value_or('-');
    Target.TimeSeparator = Formats.TimeSeparator.value_or(':');
    Target.DecimalSeparator = Formats.DecimalSeparator.value_or('.');
    Target.ThousandSeparator = Formats.ThousandSeparator.value_or(Target.DecimalSeparator == ',' ? '.' : ',');
    Target.FourDigitYear = Target.LeadingZerosInDate = true; // as ShortDateFormat has it
    Target.BooleanTrue = Formats.BooleanTrue.value_or("True");
    Target.BooleanFalse = Formats.BooleanFalse.value_or("False");
}

void UseCodePages(const TJobFormats& Formats)
{
    UseCodePage("CodePage", Formats.CodePage, &SetAnsiCodePage);
    UseCodePage("OemCodePage", Formats.OemCodePage, &SetOemCodePage);
    UseCodePage("LegacyCodePage", Formats.LegacyCodePage, &SetLegacyCodePage);
}

void UseFormats(const TJobFormats& Formats)
{
    TKvIDataFormats InForce;
    SetFormats(Formats, InForce);
    if (InForce.DecimalSeparator == InForce.ThousandSeparator)
        Refuse({.Kind = jfSameSeparators, .Character = InForce.DecimalSeparator});
    UseCodePages(Formats);
    auto& Settings = FormatSettings();
    Settings.ShortDateFormat = ShortDateFormat(InForce);
    Settings.DateSeparator = InForce.DateSeparator;
    Settings.TimeSeparator = InForce.TimeSeparator;
    Settings.DecimalSeparator = InForce.DecimalSeparator;
    Settings.ThousandSeparator = InForce.ThousandSeparator;
}

} // namespace kv
