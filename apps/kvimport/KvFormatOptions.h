// KvFormatOptions - the options that say how dates, numbers and text are written in the source.
#pragma once

#include "KvJobSettings.h"

namespace CLI {
class App;
}

namespace kv {

// `Options` must outlive the parsing.
void AddFormatOptions(CLI::App& Command, TJobFormats& Options); ///< --date-order, --date-separator, ...
void AddTruthOptions(CLI::App& Command, TJobFormats& Options); ///< --boolean-true and --boolean-false
void AddCodePageOptions(CLI::App& Command, TJobFormats& Options); ///< --code-page, --oem-code-page, ...

} // namespace kv
