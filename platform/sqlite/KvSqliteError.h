// KvSqliteError - why a call of SQLite failed. For the units of this folder.
#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "KvErrorFacts.h"

namespace kv {

struct TSQLiteError
{
    std::string Text = {};                          ///< Ready for the end of a message.
    TKvErrorFacts Facts = {};
    std::exception_ptr Raised = {};                 ///< What the program raised when it was asked meanwhile.
};

/// The rule that SQLite's extended result code speaks of, together with its message.
TKvErrorRule RuleOfCode(int Code, std::string_view Message);

} // namespace kv
