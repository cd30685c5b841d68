// KvConsoleLine - the last line of a terminal, which can be drawn again.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// Writes to a file descriptor. What cannot be written is lost: there is nobody else to tell.
class TConsoleLine
{
public:
    explicit TConsoleLine(int FileDescriptor) : Descriptor(FileDescriptor) {}

    /// Shows `Text` in place of what was shown before. It fits into Width() columns.
    void Show(std::string_view Text);
    void Erase();
    /// Prints a line above the one that is shown.
    void Print(std::string_view Text);

    /// Columns that can be used without the terminal breaking the line.
    int Width() const;
    bool IsTerminal() const;
    /// True when the locale of the environment is one of UTF-8.
    static bool SpeaksUtf8();

private:
    void Write(std::string_view Bytes) const;

    const int Descriptor;
    std::string Shown;
};

} // namespace kv
