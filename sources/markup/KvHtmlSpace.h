// KvHtmlSpace - the white space of HTML: a no-break space is none.
#pragma once

namespace kv {

inline bool IsHtmlSpace(char Char)
{
    return Char == ' ' || Char == '\n' || Char == '\t' || Char == '\r' || Char == '\f';
}

inline const char* SkipHtmlSpace(const char* From, const char* End)
{
    while (From != End && IsHtmlSpace(*From))
        ++From;
    return From;
}

} // namespace kv
