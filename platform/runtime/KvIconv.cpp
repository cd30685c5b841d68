#include "KvIconv.h"

#include <cerrno>

namespace kv {

TIconv::~TIconv()
{
    if (IsOpen())
        iconv_close(Handle);
}

int TIconv::Run(std::string_view& Text, std::string& Result) const
{
    iconv(Handle, nullptr, nullptr, nullptr, nullptr);
    char* In = const_cast<char*>(Text.data());      // iconv does not write to it
    auto Left = Text.size();
    int Error = Convert(&In, &Left, Result);
    if (Error == 0)                                 // what a page with combining characters held back
        Error = Convert(nullptr, nullptr, Result);
    Text.remove_prefix(Text.size() - Left);
    return Error;
}

int TIconv::Convert(char** In, std::size_t* Left, std::string& Result) const
{
    for (;;) {
        char Buffer[1024];
        char* Out = Buffer;
        std::size_t Room = sizeof Buffer;
        const bool Done = iconv(Handle, In, Left, &Out, &Room) != static_cast<std::size_t>(-1);
        const int Error = Done ? 0 : errno;
        Result.append(Buffer, Out);
        if (Error != E2BIG)
            return Error;
    }
}

std::vector<std::string> IconvNames(std::string_view Name)
{
    const bool IsNumber = Name.find_first_not_of("0123456789") == Name.npos;
    if (IsNumber && !Name.empty())
        return {"CP" + std::string(Name), "IBM" + std::string(Name)};
    // An empty name would mean the locale's page, and what follows a slash allows replacements.
    if (Name.empty() || Name.find('/') != Name.npos || Name.find('\0') != Name.npos)
        return {};
    return {std::string(Name)};
}

} // namespace kv
