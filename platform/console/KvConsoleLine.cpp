#include "KvConsoleLine.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <sys/ioctl.h>
#include <unistd.h>

#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view EraseLine = "\r\x1B[K";
constexpr int UsualWidth = 80;

std::string_view Environment(const char* Name)
{
    const char* const Value = std::getenv(Name);
    return Value ? Value : "";
}

} // namespace

void TConsoleLine::Show(std::string_view Text)
{
    if (Text == Shown)
        return;
    Shown = Text;
    Write(std::string(EraseLine) + Shown);
}

void TConsoleLine::Erase()
{
    if (Shown.empty())
        return;
    Shown.clear();
    Write(EraseLine);
}

void TConsoleLine::Print(std::string_view Text)
{
    std::string Bytes(Shown.empty() ? "" : EraseLine);
    Bytes.append(Text).append("\n").append(Shown);
    Write(Bytes);
}

int TConsoleLine::Width() const
{
    winsize Size{};
    const bool Known = ioctl(Descriptor, TIOCGWINSZ, &Size) == 0 && Size.ws_col > 0;
    return (Known ? Size.ws_col : UsualWidth) - 1;  // the last column makes some terminals break the line
}

bool TConsoleLine::IsTerminal() const
{
    return isatty(Descriptor) == 1;
}

bool TConsoleLine::SpeaksUtf8()
{
    for (const char* const Name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const auto Locale = Environment(Name); !Locale.empty())
            return UpperCase(Locale).find("UTF-8") != std::string::npos ||
                   UpperCase(Locale).find("UTF8") != std::string::npos;
    return false;
}

void TConsoleLine::Write(std::string_view Bytes) const
{
    while (!Bytes.empty()) {
        const auto Count = write(Descriptor, Bytes.data(), Bytes.size());
        if (Count < 0 && errno == EINTR)
            continue;
        if (Count <= 0)
            return;
        Bytes.remove_prefix(static_cast<std::size_t>(Count));
    }
}

} // namespace kv
