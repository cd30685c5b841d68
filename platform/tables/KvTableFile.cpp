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
        const auto Number = std::to_string(Defs.size() + 1);
        throw EFormatError(FormatText("File \"%s\", name of field %d: %s", {FileName, Number, Error.Message}),
                           {.FileName = FileName, .Place = "field " + Number, .Rule = erFormat});
    }
}

TVariant TKvTableFile::Value(std::size_t Field)
{
    try {
        return Decode(Field);
    }
    catch (const Exception& Error) {
        RaiseUnreadable(Field, Error);
    }
}

void TKvTableFile::RaiseUnreadable(std::size_t Field, const Exception& Error) const
{
    const auto Record = std::to_string(Number());
    auto Facts = Error.Facts;
    Facts.FileName = FileName;
    Facts.Place = "record " + Record;
    Facts.Field = Defs[Field].Name;
    if (Facts.Rule == erNone)
        Facts.Rule = erFormat;
    throw EFormatError(FormatText("File \"%s\", record %d, field '%s': %s",
                                  {FileName, Record, Facts.Field, Error.Message}),
                       Facts);
}

} // namespace kv
