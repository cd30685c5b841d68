#include "KvFormatOptions.h"

#include <CLI/CLI.hpp>

#include "KvOptionCheck.h"
#include "KvOptionText.h"

namespace kv {

namespace {

template <class TTarget>
void AddSeparator(CLI::App& Command, const std::string& Name, const std::string& Help, TTarget& Target)
{
    AddChecked(Command, Name, "CHAR", Help,
               [&Target](const std::string& Text) { Target = ReadCharacter(Text); });
}

} // namespace

void AddFormatOptions(CLI::App& Command, TJobFormats& Options)
{
    AddChoice(Command, "--date-order", "Order of year, month and day in dates: ymd (default), mdy or dmy",
              {{"ymd", [&Options] { Options.DateOrder = doYMD; }},
               {"mdy", [&Options] { Options.DateOrder = doMDY; }},
               {"dmy", [&Options] { Options.DateOrder = doDMY; }}});
    AddSeparator(Command, "--date-separator", "Between them (default: -)", Options.DateSeparator);
    AddSeparator(Command, "--time-separator", "Between hours, minutes and seconds (default: :)",
                 Options.TimeSeparator);
    AddSeparator(Command, "--decimal-separator", "Before the fraction of a number (default: .)",
                 Options.DecimalSeparator);
    AddChecked(
        Command, "--thousand-separator", "CHAR",
        "Groups the digits of numbers (default: comma; a point when the decimal separator is a "
        "comma), or none",
        [&Options](const std::string& Text) {
            Options.ThousandSeparator = ReadCharacter(Text);
            Options.CheckThousands = false; // it is meant
        });
}

void AddTruthOptions(CLI::App& Command, TJobFormats& Options)
{
    Command
        .add_option("--boolean-true", Options.BooleanTrue,
                    "Text of a true value, to the letter (default: True)")
        ->type_name("TEXT");
    Command.add_option("--boolean-false", Options.BooleanFalse, "Text of a false value (default: False)")
        ->type_name("TEXT");
}

void AddCodePageOptions(CLI::App& Command, TJobFormats& Options)
{
    Command
        .add_option(
            "--code-page", Options.CodePage,
            "Code page of the text, such as windows-1250 (default: UTF-8, or what the file says of itself)")
        ->type_name("NAME");
    Command
        .add_option("--oem-code-page", Options.OemCodePage,
                    "Code page of the text with --charset msdos (default: 437)")
        ->type_name("NAME");
    Command
        .add_option(
            "--legacy-code-page", Options.LegacyCodePage,
            "Code page of values that are no UTF-8 although the text should be (default: windows-1252)")
        ->type_name("NAME");
}

} // namespace kv
