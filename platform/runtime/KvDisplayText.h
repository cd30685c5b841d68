// KvDisplayText - text between the terminal, which speaks UTF-8, and the process's code page.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// What messages and files hold, for people: UTF-8 as it is, anything else from the process's page.
std::string ToDisplay(std::string_view Text);

/// What a source holds, likewise; from the OEM page when `IsMsDos`.
std::string ToDisplay(std::string_view Text, bool IsMsDos);

/// What the user typed, as the library takes it. Raises EConvertError when it has no such characters.
std::string FromDisplay(std::string_view Text);

/// `Text` with every `From` replaced.
std::string ReplaceAll(std::string Text, std::string_view From, std::string_view To);

} // namespace kv
