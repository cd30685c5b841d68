// KvIconv - conversions between code pages by the C library.
#pragma once

#include <iconv.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

/// An open conversion; starts each text in its initial state.
class TIconv
{
public:
    /// By names that iconv knows; afterwards it is open or not.
    TIconv(const std::string& To, const std::string& From) : Handle(iconv_open(To.c_str(), From.c_str())) {}
    TIconv(TIconv&& Other) noexcept : Handle(std::exchange(Other.Handle, NoHandle)) {}
    TIconv& operator=(TIconv&&) = delete;
    ~TIconv();

    bool IsOpen() const { return Handle != NoHandle; }

    /// Appends what the front of `Text` converts to and removes it from `Text`. 0 when that was all of it,
    /// else EILSEQ for bytes without equivalent or EINVAL for a character cut short.
    int Run(std::string_view& Text, std::string& Result) const;

private:
    static inline const iconv_t NoHandle = reinterpret_cast<iconv_t>(-1);

    int Convert(char** In, std::size_t* Left, std::string& Result) const;

    iconv_t Handle;
};

/// The names under which iconv may know a page: bare numbers are those of IBM and Windows pages.
std::vector<std::string> IconvNames(std::string_view Name);

} // namespace kv
