#include "KvTableFile.h"

#include <algorithm>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

bool HasSize(TFieldType Type)
{
    return Type == ftString || Type == ftBytes || Type == ftVarBytes;
}

bool IsNamed(const std::vector<TFieldDef>& Defs, std::string_view Name)
{
    return std::ranges::any_of(Defs, [Name](const TFieldDef& Def) { return SameText(Def.Name, Name); });
}

std::string UniqueName(const std::vector<TFieldDef>& Defs, const std::string& Name)
{
    auto Result = Name;
    for (int Number = 1; IsNamed(Defs, Result); ++Number)
        Result = Name + "_" + std::to_string(Number);
    return Result;
}

} // namespace

void TKvTableFile::AddField(std::string_view StoredName, TFieldType Type, std::size_t Size)
{
    try {
        Defs.push_back({.Name = UniqueName(Defs, std::string(Text.Convert(StoredName))),
                        .DataType = Type,
                        .Size = HasSize(Type) ? static_cast<int>(Size) : 0});
    }
    catch (const EConvertError& Error) {
        throw EFormatError(FormatText("File \"%s\", name of field %d: %s",
                                      {FileName, std::to_string(Defs.size() + 1), Error.Message}));
    }
}

TVariant TKvTableFile::Value(std::size_t Field)
{
    try {
        return Decode(Field);
    }
    catch (const Exception& Error) {
        throw EFormatError(FormatText("File \"%s\", record %d, field '%s': %s",
                                      {FileName, std::to_string(Number()), Defs[Field].Name, Error.Message}));
    }
}

} // namespace kv
