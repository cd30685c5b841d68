#include "KvYardText.h"

#include <stdexcept>

namespace kv::bench {

namespace {

/// The next line without its end; `Rest` moves behind it.
std::string_view CutLine(std::string_view& Rest)
{
    const auto End = Rest.find('\n');
    auto Line = Rest.substr(0, End);
    Rest.remove_prefix(End == Rest.npos ? Rest.size() : End + 1);
    if (Line.ends_with('\r'))
        Line.remove_suffix(1);
    return Line;
}

std::string_view WithoutPadding(std::string_view Text)
{
    return Text.substr(0, Text.find_last_not_of(' ') + 1);
}

/// The text behind an opening quotation mark up to the closing one; `Line` moves behind that.
/// `Buffer` holds the value when a doubled mark had to be collapsed.
std::string_view CutQuoted(std::string_view& Line, std::string& Buffer)
{
    Buffer.clear();
    for (;;) {
        const auto End = Line.find('"');
        if (End == Line.npos)
            throw std::runtime_error("a quotation mark is not closed");
        const auto Piece = Line.substr(0, End);
        const bool Doubled = Line.substr(End + 1).starts_with('"');
        Line.remove_prefix(End + 1 + Doubled);
        if (!Doubled && Buffer.empty())
            return Piece;
        Buffer.append(Piece);
        if (!Doubled)
            return Buffer;
        Buffer += '"';
    }
}

std::string_view CutValue(std::string_view& Line, std::string& Buffer)
{
    if (Line.starts_with('"')) {
        Line.remove_prefix(1);
        return CutQuoted(Line, Buffer);
    }
    const auto Value = Line.substr(0, Line.find(','));
    Line.remove_prefix(Value.size());
    return Value;
}

} // namespace

TDelimitedCutter::TDelimitedCutter(std::string_view File) : Rest(File)
{
    CutLine(Rest);
}

bool TDelimitedCutter::Next(TOrderText& Order)
{
    if (Rest.empty())
        return false;
    auto Line = CutLine(Rest);                      // no order of ours holds a line end
    for (std::size_t Column = 0; Column < Order.size(); Column++) {
        if (Column > 0) {
            if (!Line.starts_with(','))
                throw std::runtime_error("a line has too few values");
            Line.remove_prefix(1);
        }
        Order[Column] = CutValue(Line, Unquoted[Column]);
    }
    return true;
}

bool TFixedWidthCutter::Next(TOrderText& Order)
{
    if (Rest.empty())
        return false;
    auto Line = CutLine(Rest);
    for (std::size_t Column = 0; Column < Order.size(); Column++) {
        const auto Value = Line.substr(0, OrderColumns[Column].Width);
        Line.remove_prefix(Value.size());
        Order[Column] = WithoutPadding(Value);
    }
    return true;
}

} // namespace kv::bench
