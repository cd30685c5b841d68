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

std::string ShortDateFormat(const TFormatOptions& Options)
{
    const std::string Separator(1, Options.DateSeparator);
    switch (Options.DateOrder) {
    case doMDY: return "MM" + Separator + "dd" + Separator + "yyyy";
    case doDMY: return "dd" + Separator + "MM" + Separator + "yyyy";
    default:    return "yyyy" + Separator + "MM" + Separator + "dd";
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
    Command.add_option("--boolean-true", Options.BooleanTrue, "Text of a true value, to the letter (default: True)")
        ->type_name("TEXT");
    Command.add_option("--boolean-false", Options.BooleanFalse, "Text of a false value (default: False)")->type_name("TEXT");
}

void AddCodePageOptions(CLI::App& Command, TFormatOptions& Options)
{
    Command.add_option("--code-page", Options.CodePage, "Code page of the text, such as windows-1250 (default: UTF-8)")
        ->type_name("NAME");
    Command.add_option("--oem-code-page", Options.OemCodePage, "Code page of the text with --charset msdos (default: 437)")
        ->type_name("NAME");
    Command.add_option("--legacy-code-page", Options.LegacyCodePage,
                       "Code page of values that are no UTF-8 although the text should be (default: windows-1252)")
        ->type_name("NAME");
}

char ThousandSeparator(const TFormatOptions& Options)
{
    return Options.ThousandSeparator.value_or(Options.DecimalSeparator == ',' ? '.' : ',');
}

void UseFormats(const TFormatOptions& Options)
{
    if (Options.DecimalSeparator == ThousandSeparator(Options))
        throw EUsageError("--decimal-separator and --thousand-separator are the same; one of them must be another");
    UseCodePage("--code-page", Options.CodePage, &SetAnsiCodePage);
    UseCodePage("--oem-code-page", Options.OemCodePage, &SetOemCodePage);
    UseCodePage("--legacy-code-page", Options.LegacyCodePage, &SetLegacyCodePage);
    auto& Settings = FormatSettings();
    Settings.ShortDateFormat = ShortDateFormat(Options);
    Settings.DateSeparator = Options.DateSeparator;
    Settings.TimeSeparator = Options.TimeSeparator;
    Settings.DecimalSeparator = Options.DecimalSeparator;
    Settings.ThousandSeparator = ThousandSeparator(Options);
}

void SetFormats(const TFormatOptions& Options, TKvIDataFormats& Formats)
{
    Formats.DateOrder = Options.DateOrder;
    Formats.DateSeparator = Options.DateSeparator;
    Formats.TimeSeparator = Options.TimeSeparator;
    Formats.DecimalSeparator = Options.DecimalSeparator;
    Formats.ThousandSeparator = ThousandSeparator(Options);
    Formats.BooleanTrue = Options.BooleanTrue;
    Formats.BooleanFalse = Options.BooleanFalse;
}

} // namespace kv
