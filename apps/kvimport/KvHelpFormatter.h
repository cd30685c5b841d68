// KvHelpFormatter - the help text, set in two columns that fit a usual terminal.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace kv {

class THelpFormatter final : public CLI::Formatter
{
public:
    THelpFormatter();

    std::string make_option_desc(const CLI::Option* Option) const override;
    std::string make_help(const CLI::App* Program, std::string Name, CLI::AppFormatMode Mode) const override;
};

/// `Text` with line breaks in place of blanks, so that no line is longer than `Width` unless a word is.
std::string WrapWords(const std::string& Text, std::size_t Width);

} // namespace kv
