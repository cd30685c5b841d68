#include "KvOptionText.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "KvExitStatus.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

struct TNamedCharacter
{
    std::string_view Name;
    char Value;
};

constexpr TNamedCharacter NamedCharacters[] = {{"none", '\0'},     {"tab", '\t'},  {"comma", ','},
                                               {"semicolon", ';'}, {"space", ' '}, {"quot", '"'},
                                               {"apos", '\''}};

struct TNamedText
{
    std::string_view Name, Value;
};

constexpr TNamedText NamedSeparators[] = {{"crlf", "\r\n"}, {"cr", "\r"}, {"lf", "\n"}};

/// The character after a backslash at `Pos`, which then stands on the last character read.
char ReadEscape(std::string_view Text, std::size_t& Pos)
{
    switch (Text[Pos]) {
    case 't':  return '\t';
    case 'r':  return '\r';
    case 'n':  return '\n';
    case '0':  return '\0';
    case '\\': return '\\';
    case 'x':
        if (Text.size() - Pos > 2 && std::isxdigit(static_cast<unsigned char>(Text[Pos + 1])) &&
            std::isxdigit(static_cast<unsigned char>(Text[Pos + 2]))) {
            Pos += 2;
            return HexToText(Text.substr(Pos - 1, 2)).front();
        }
        break;
    default:   break;
    }
    throw EUsageError("'" + std::string(Text) +
                      "': after a backslash stands t, r, n, 0, x and two hexadecimal digits, "
                      "or another backslash");
}

/// As ReadEscape takes it, where it cannot be seen.
std::string Escaped(char Value)
{
    const bool IsPlain = Value > ' ' && Value < '\x7F' && Value != '\\';
    return IsPlain ? std::string(1, Value) : "\\x" + TextToHex({&Value, 1});
}

/// Calls `Take` with each trimmed piece between "," or ";" that is not empty.
template <class TTake> void ForEachPiece(std::string_view Text, TTake Take)
{
    while (!Text.empty()) {
        const auto End = std::min(Text.find_first_of(",;"), Text.size());
        if (const auto Piece = Trim(Text.substr(0, End)); !Piece.empty())
            Take(Piece);
        Text.remove_prefix(std::min(End + 1, Text.size()));
    }
}

std::string ReadFixedColumn(std::string_view Piece)
{
    const auto Refuse = [Piece]() -> EUsageError {
        return EUsageError("'" + std::string(Piece) +
                           "' is no column such as CITY=10-29: a field, its first and its last byte");
    };
    const auto Equal = Piece.rfind('=');
    if (Equal == Piece.npos)
        throw Refuse();
    const auto Field = Trim(Piece.substr(0, Equal));
    const auto Range = Trim(Piece.substr(Equal + 1));
    const auto Dash = Range.find('-');
    if (Field.empty() || Dash == Range.npos)
        throw Refuse();
    const auto First = TryTextToInt(Range.substr(0, Dash)), Last = TryTextToInt(Range.substr(Dash + 1));
    if (!First || !Last || *First < 1 || *Last < *First)
        throw Refuse();
    return std::string(Field) + "=Text" + std::to_string(*First) + "-" + std::to_string(*Last);
}

} // namespace

std::string Unescape(std::string_view Text)
{
    std::string Result;
    for (std::size_t Pos = 0; Pos < Text.size(); ++Pos)
        if (Text[Pos] == '\\' && Pos + 1 < Text.size())
            Result += ReadEscape(Text, ++Pos);
        else
            Result += Text[Pos];
    return Result;
}

char ReadCharacter(std::string_view Text)
{
    const auto Named = std::ranges::find_if(
        NamedCharacters, [Text](const TNamedCharacter& Each) { return SameText(Each.Name, Text); });
    if (Named != std::end(NamedCharacters))
        return Named->Value;
    const auto Plain = Unescape(Text);
    if (Plain.size() != 1)
        throw EUsageError("'" + std::string(Text) +
                          "' is not a single character, nor one of the words tab, comma, "
                          "semicolon, space, quot, apos, none");
    return Plain.front();
}

std::string ReadRecordSeparator(std::string_view Text)
{
    const auto Named = std::ranges::find_if(
        NamedSeparators, [Text](const TNamedText& Each) { return SameText(Each.Name, Text); });
    if (Named != std::end(NamedSeparators))
        return std::string(Named->Value);
    if (Text.empty())
        throw EUsageError("at least one character ends a record");
    return Unescape(Text);
}

std::vector<std::string> ReadNames(std::string_view Text)
{
    std::vector<std::string> Names;
    ForEachPiece(Text, [&Names](std::string_view Piece) { Names.emplace_back(Piece); });
    return Names;
}

std::vector<std::string> ReadFixedColumns(std::string_view Text)
{
    std::vector<std::string> Lines;
    ForEachPiece(Text, [&Lines](std::string_view Piece) { Lines.push_back(ReadFixedColumn(Piece)); });
    if (Lines.empty())
        throw EUsageError("there is no column in it");
    return Lines;
}

std::string NameOfCharacter(char Value)
{
    for (const auto& Each : NamedCharacters)
        if (Each.Value == Value)
            return std::string(Each.Name);
    return "'" + Escaped(Value) + "'";
}

std::string NameOfRecordSeparator(std::string_view Value)
{
    for (const auto& Each : NamedSeparators)
        if (Each.Value == Value)
            return std::string(Each.Name);
    std::string Result;
    for (const char Char : Value)
        Result += Escaped(Char);
    return Result;
}

std::string JoinNames(const std::vector<std::string>& Names, std::string_view Between)
{
    std::string Result;
    for (const auto& Name : Names)
        Result.append(Result.empty() ? "" : Between).append(Name);
    return Result;
}

} // namespace kv
