#include "KvTableFile.h"

#include <algorithm>

#include "KvCodePage.h"
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

std::string TKvTableFile::NameOf(std::string_view StoredName)
{
    constexpr std::size_t MaxRest = 3;              // bytes of a character whose last one had no room
    std::string Name;
    for (std::size_t Rest = 0;; ++Rest)
        try {
            Name = Trim(Text.Convert(StoredName.substr(0, StoredName.size() - Rest)));
            break;
        }
        catch (const EConvertError&) {
            if (Text.IsSingleByte() || !AnsiIsUtf8() || Rest == MaxRest || Rest + 1 >= StoredName.size())
                throw;
        }
    return Name.empty() ? "Field" + std::to_string(Defs.size() + 1) : Name;
}

void TKvTableFile::AddField(std::string_view StoredName, TFieldType Type, std::size_t Size)
{
    try {
        Defs.push_back({.Name = UniqueName(Defs, NameOf(StoredName)),
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
        auto Result = Decode(Field);
        if (Text.HasGuessed() && FirstGuessed == 0)
            FirstGuessed = Number();
        return Result;
    }
    catch (const Exception& Error) {
        RaiseUnreadable(Field, Error);
    }
}

std::vector<TKvTableRemark> TKvTableFile::Remarks() const
{
    if (FirstGuessed == 0)
        return {};
    return {{.Kind = trNoCodePage, .First = static_cast<std::int64_t>(FirstGuessed)}};
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
