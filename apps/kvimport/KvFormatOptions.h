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

/// The defaults do not depend on the locale: a script imports the same everywhere.
struct TFormatOptions
{
    TKvIDateOrder DateOrder = doYMD;
    char DateSeparator = '-';
    char TimeSeparator = ':';
    char DecimalSeparator = '.';
    std::optional<char> ThousandSeparator;          ///< Not given: a comma, or a point when the comma is taken.
    std::string BooleanTrue = "True";
    std::string BooleanFalse = "False";
    std::string CodePage;                           ///< Of the source's text; empty: UTF-8.
    std::string OemCodePage;                        ///< The same with --charset msdos; empty: 437.
    std::string LegacyCodePage;                     ///< Of what is no UTF-8; empty: windows-1252.
};

// `Options` must outlive the parsing.
void AddFormatOptions(CLI::App& Command, TFormatOptions& Options); ///< --date-order, --date-separator, ...
void AddCodePageOptions(CLI::App& Command, TFormatOptions& Options); ///< --code-page, --oem-code-page, ...

/// The separator that is removed from numbers.
char ThousandSeparator(const TFormatOptions& Options);

/// Puts the process-wide settings in force. Raises EUsageError for an unknown code page or when the
/// decimal and the thousand separator are the same.
void UseFormats(const TFormatOptions& Options);
/// Sets those of a component.
void SetFormats(const TFormatOptions& Options, TKvIDataFormats& Formats);

} // namespace kv
