#include "KvFormatOptions.h"

#include <CLI/CLI.hpp>

#include "KvCodePage.h"
#include "KvExitStatus.h"
#include "KvFormatSettings.h"
#include "KvOptionCheck.h"
#include "KvOptionText.h"
#include "KviDataFormats.h"

namespace kv {

namespace {

template <class TTarget>
void AddSeparator(CLI::App& Command, const std::string& Name, const std::string& Help, TTarget& Target)
{
    AddChecked(Command, Name, "CHAR", Help, [&Target](const std::string& Text) { Target = ReadCharacter(Text); });
}

std::string ShortDateFormat(const TKvIDataFormats& Formats)
{
    const std::string Separator(1, Formats.DateSeparator);
    switch (Formats.DateOrder) {
    case doMDY: return "MM" + Separator + "dd" + Separator + "yyyy";
    case doDMY: return "dd" + Separator + "MM" + Separator + "yyyy";
    case doYMD: return "yyyy" + Separator + "MM" + Separator + "dd";
    default:
        throw EUsageError("dates in the order " + NameOfDateOrder(Formats.DateOrder) +
                          " cannot be read; say --date-order ymd, mdy or dmy");
    }
}

void UseCodePage(const char* Option, const std::string& Name, void (*Set)(std::string_view))
{
    if (Name.empty())
        return;
    try {
        Set(Name);
    }
    catch (const EConvertError& Error) {
        throw EUsageError(std::string(Option) + ": " + Error.Message);
    }
}

} // namespace

void AddFormatOptions(CLI::App& Command, TFormatOptions& Options)
{
    AddChoice(Command, "--date-order", "Order of year, month and day in dates: ymd (default), mdy or dmy",
              {{"ymd", [&Options] { Options.DateOrder = doYMD; }},
               {"mdy", [&Options] { Options.DateOrder = doMDY; }},
               {"dmy", [&Options] { Options.DateOrder = doDMY; }}});
    AddSeparator(Command, "--date-separator", "Between them (default: -)", Options.DateSeparator);
    AddSeparator(Command, "--time-separator", "Between hours, minutes and seconds (default: :)", Options.TimeSeparator);
    AddSeparator(Command, "--decimal-separator", "Before the fraction of a number (default: .)", Options.DecimalSeparator);
    AddSeparator(Command, "--thousand-separator", "Removed from numbers wherever it stands (default: comma; a point when the decimal separator is a comma), or none",
                 Options.ThousandSeparator);
}

void AddTruthOptions(CLI::App& Command, TFormatOptions& Options)
{
    Command.add_option("--boolean-true", Options.BooleanTrue, "Text of a true value, to the letter (default: True)")
        ->type_name("TEXT");
    Command.add_option("--boolean-false", Options.BooleanFalse, "Text of a false value (default: False)")->type_name("TEXT");
}

void AddCodePageOptions(CLI::App& Command, TFormatOptions& Options)
{
    Command.add_option("--code-page", Options.CodePage, "Code page of the text, such as windows-1250 (default: UTF-8, or what the file says of itself)")
        ->type_name("NAME");
    Command.add_option("--oem-code-page", Options.OemCodePage, "Code page of the text with --charset msdos (default: 437)")
        ->type_name("NAME");
    Command.add_option("--legacy-code-page", Options.LegacyCodePage,
                       "Code page of values that are no UTF-8 although the text should be (default: windows-1252)")
        ->type_name("NAME");
}

std::string NameOfDateOrder(TKvIDateOrder Order)
{
    static constexpr const char* Names[] = {"mdy", "dmy", "ymd", "ydm", "dym", "myd"}; // by ordinal
    return Names[Order];
}

void TakeFormats(const TKvIDataFormats& From, TFormatOptions& Options)
{
    const auto Take = [](auto& Option, auto Value) {
        if (!Option)
            Option = Value;
    };
    Take(Options.DateOrder, From.DateOrder);
    Take(Options.DateSeparator, From.DateSeparator);
    Take(Options.TimeSeparator, From.TimeSeparator);
    Take(Options.DecimalSeparator, From.DecimalSeparator);
    Take(Options.ThousandSeparator, From.ThousandSeparator);
}

void SetFormats(const TFormatOptions& Options, TKvIDataFormats& Formats)
{
    Formats.DateOrder = Options.DateOrder.value_or(doYMD);
    Formats.DateSeparator = Options.DateSeparator.value_or('-');
    Formats.TimeSeparator = Options.TimeSeparator.value_or(':');
    Formats.DecimalSeparator = Options.DecimalSeparator.value_or('.');
    Formats.ThousandSeparator = Options.ThousandSeparator.value_or(Formats.DecimalSeparator == ',' ? '.' : ',');
    Formats.FourDigitYear = Formats.LeadingZerosInDate = true; // as ShortDateFormat has it
    Formats.BooleanTrue = Options.BooleanTrue.value_or("True");
    Formats.BooleanFalse = Options.BooleanFalse.value_or("False");
}

void UseCodePages(const TFormatOptions& Options)
{
    UseCodePage("--code-page", Options.CodePage, &SetAnsiCodePage);
    UseCodePage("--oem-code-page", Options.OemCodePage, &SetOemCodePage);
    UseCodePage("--legacy-code-page", Options.LegacyCodePage, &SetLegacyCodePage);
}

void UseFormats(const TFormatOptions& Options)
{
    TKvIDataFormats Formats;
    SetFormats(Options, Formats);
    if (Formats.DecimalSeparator == Formats.ThousandSeparator)
        throw EUsageError("--decimal-separator and --thousand-separator are the same; one of them must be another");
    UseCodePages(Options);
    auto& Settings = FormatSettings();
    Settings.ShortDateFormat = ShortDateFormat(Formats);
    Settings.DateSeparator = Formats.DateSeparator;
    Settings.TimeSeparator = Formats.TimeSeparator;
    Settings.DecimalSeparator = Formats.DecimalSeparator;
    Settings.ThousandSeparator = Formats.ThousandSeparator;
}

} // namespace kv
