#include "KvSqliteType.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

#include "KvText.h"

namespace kv {

namespace {

/// A declared type taken apart: "NATIVE  character (70)" is "NATIVE CHARACTER" and 70.
struct TTypeWords
{
    std::string Name;                               // upper case, words separated by one blank
    int Size = 0;                                   // the first number in parentheses ...
    int Scale = 0;                                  // ... and the second
};

/// The number that `Text` begins with, 0 without one.
int NumberAt(std::string_view Text)
{
    const auto Digits = Trim(Text);
    int Number = 0;
    std::from_chars(Digits.data(), Digits.data() + Digits.size(), Number);
    return std::max(Number, 0);
}

TTypeWords SplitType(std::string_view Declared)
{
    TTypeWords Words;
    const auto Paren = std::min(Declared.find('('), Declared.size());
    for (const char C : UpperCase(Trim(Declared.substr(0, Paren)))) {
        const bool Blank = static_cast<unsigned char>(C) <= ' ';
        if (!Blank)
            Words.Name += C;
        else if (Words.Name.back() != ' ')
            Words.Name += ' ';
    }
    if (Paren < Declared.size()) {
        const auto Sizes = Declared.substr(Paren + 1);
        Words.Size = NumberAt(Sizes);
        if (const auto Comma = Sizes.find(','); Comma != Sizes.npos)
            Words.Scale = NumberAt(Sizes.substr(Comma + 1));
    }
    return Words;
}

/// "Determination Of Column Affinity": the first of the rules that fits decides.
TSQLiteAffinity AffinityOf(std::string_view Declared)
{
    const auto Upper = UpperCase(Declared);
    const auto Has = [&Upper](const char* Word) { return Upper.find(Word) != std::string::npos; };
    if (Has("INT"))
        return saInteger;
    if (Has("CHAR") || Has("CLOB") || Has("TEXT"))
        return saText;
    if (Has("BLOB") || Upper.empty())
        return saBlob;
    if (Has("REAL") || Has("FLOA") || Has("DOUB"))
        return saReal;
    return saNumeric;
}

struct TKnownType
{
    std::string_view Name;
    TFieldType Field;
};

// Types whose names say more than their affinity. Integers of all other names are 64 bits wide, as
// they are stored.
constexpr TKnownType KnownTypes[] = {
    {"SMALLINT", ftSmallint},
    {"INT2", ftSmallint},
    {"BOOLEAN", ftBoolean},
    {"BOOL", ftBoolean},
    {"BIT", ftBoolean},
    {"DECIMAL", ftBCD},
    {"NUMERIC", ftBCD},
    {"DEC", ftBCD},
    {"NUMBER", ftBCD},
    {"MONEY", ftCurrency},
    {"SMALLMONEY", ftCurrency},
    {"CURRENCY", ftCurrency},
    {"DATE", ftDate},
    {"TIME", ftTime},
    {"DATETIME", ftDateTime},
    {"DATETIME2", ftDateTime},
    {"SMALLDATETIME", ftDateTime},
    {"TIMESTAMP", ftDateTime},
    {"TIMESTAMP WITHOUT TIME ZONE", ftDateTime},
    {"STRING", ftString},
    {"MEMO", ftMemo},
    {"BINARY", ftVarBytes},
    {"VARBINARY", ftVarBytes},
    {"LONG VARBINARY", ftBlob},
    {"LONGVARBINARY", ftBlob},
    {"BYTEA", ftBlob},
    {"IMAGE", ftBlob},
    {"RAW", ftVarBytes},
};

// Found with and without braces and as bare digits: kept as the text that it is.
constexpr std::string_view GuidNames[] = {"GUID", "UUID", "UNIQUEIDENTIFIER"};
constexpr int GuidSize = 38;                        // with braces

TFieldType FieldByAffinity(TSQLiteAffinity Affinity, std::string_view Name)
{
    switch (Affinity) {
    case saInteger: return ftLargeint;
    case saText:    return Name.find("CLOB") == std::string_view::npos ? ftString : ftMemo;
    case saReal:    return ftFloat;
    case saBlob:    return Name.empty() ? ftVariant : ftBlob;
    case saNumeric: break;                          // of unknown names, for numbers and for text
    }
    return ftVariant;
}

} // namespace

TSQLiteType ReadDeclaredType(std::string_view Declared)
{
    const auto [Name, Size, Scale] = SplitType(Declared);
    TSQLiteType Type;
    Type.Affinity = AffinityOf(Declared);
    if (std::ranges::find(GuidNames, Name) != std::end(GuidNames))
        return {.Field = ftString, .Size = GuidSize, .Affinity = Type.Affinity};
    const auto* const Known = std::ranges::find(KnownTypes, Name, &TKnownType::Name);
    Type.Field = Known != std::end(KnownTypes) ? Known->Field : FieldByAffinity(Type.Affinity, Name);
    if (Type.Field == ftVarBytes && Size == 0)
        Type.Field = ftBlob;
    if (Type.Field == ftString || Type.Field == ftVarBytes)
        Type.Size = Size;
    if (Type.Field == ftBCD && Scale <= Size) {
        Type.Precision = Size;
        Type.Scale = Scale;
    }
    return Type;
}

TSQLiteType ReadStrictType(std::string_view Declared)
{
    return SameText(Declared, "ANY") ? TSQLiteType{} : ReadDeclaredType(Declared);
}

std::string_view AffinityWord(TSQLiteAffinity Affinity)
{
    switch (Affinity) {
    case saText:    return "TEXT";
    case saNumeric: return "NUMERIC";
    case saInteger: return "INTEGER";
    case saReal:    return "REAL";
    case saBlob:    break;
    }
    return "BLOB";
}

} // namespace kv
