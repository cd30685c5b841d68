#include "KvHelpFormatter.h"

#include <sstream>
#include <utility>

#include "KvDisplayText.h"

namespace kv {

namespace {

constexpr std::size_t NameWidth = 30, TextWidth = 68;

} // namespace

THelpFormatter::THelpFormatter()
{
    column_width(NameWidth);
    label("REQUIRED", "");
}

std::string THelpFormatter::make_option_desc(const CLI::Option* Option) const
{
    return WrapWords(CLI::Formatter::make_option_desc(Option), TextWidth);
}

std::string THelpFormatter::make_help(const CLI::App* Program, std::string Name,
                                      CLI::AppFormatMode Mode) const
{
    return ReplaceAll(CLI::Formatter::make_help(Program, std::move(Name), Mode), "\n\n\n", "\n\n");
}

std::string WrapWords(const std::string& Text, std::size_t Width)
{
    std::istringstream Words(Text);
    std::string Result, Word;
    std::size_t Used = 0;
    while (Words >> Word) {
        const bool Breaks = Used > 0 && Used + 1 + Word.size() > Width;
        if (Used > 0)
            Result += Breaks ? '\n' : ' ';
        Used = (Breaks || Used == 0 ? 0 : Used + 1) + Word.size();
        Result += Word;
    }
    return Result;
}

} // namespace kv
