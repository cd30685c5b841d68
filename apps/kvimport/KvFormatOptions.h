// KvFormatOptions - the options that say how dates, numbers and text are written in the source.
#pragma once

#include <optional>
#include <string>

#include "KviTypes.h"

namespace CLI {
class App;
}

namespace kv {

class TKvIDataFormats;

/// What is not given has a default that does not depend on the locale: a script imports the same
/// everywhere.
struct TFormatOptions
{
    std::optional<TKvIDateOrder> DateOrder;         ///< Not given: doYMD.
    std::optional<char> DateSeparator;              ///< "-"
    std::optional<char> TimeSeparator;              ///< ":"
    std::optional<char> DecimalSeparator;           ///< "."
    std::optional<char> ThousandSeparator;          ///< A comma, or a point when the comma is taken.
    std::optional<std::string> BooleanTrue;         ///< "True"
    std::optional<std::string> BooleanFalse;        ///< "False"
    std::string CodePage;                           ///< Of the source's text; empty: UTF-8.
    std::string OemCodePage;                        ///< The same with --charset msdos; empty: 437.
    std::string LegacyCodePage;                     ///< Of what is no UTF-8; empty: windows-1252.
};

// `Options` must outlive the parsing.
void AddFormatOptions(CLI::App& Command, TFormatOptions& Options); ///< --date-order, --date-separator, ...
void AddTruthOptions(CLI::App& Command, TFormatOptions& Options); ///< --boolean-true and --boolean-false
void AddCodePageOptions(CLI::App& Command, TFormatOptions& Options); ///< --code-page, --oem-code-page, ...

/// As --date-order has it, and all others by the same rule: "dmy".
std::string NameOfDateOrder(TKvIDateOrder Order);

/// What was not given becomes that of `From`, but for the words of truth.
void TakeFormats(const TKvIDataFormats& From, TFormatOptions& Options);
/// Sets those of a component.
void SetFormats(const TFormatOptions& Options, TKvIDataFormats& Formats);
/// Puts the process-wide code pages in force. Raises EUsageError for an unknown one.
void UseCodePages(const TFormatOptions& Options);
/// The same with the formats. Raises EUsageError too for a date order in which dates cannot be read, and
/// when the decimal and the thousand separator are the same.
void UseFormats(const TFormatOptions& Options);

} // namespace kv
