#include "KvSourceFactory.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "KvException.h"
#include "KvIniFile.h"
#include "KvText.h"
#include "Kvi2bde.h"
#include "Kvi2ds.h"
#include "Kvi2html.h"
#include "Kvi2ole.h"
#include "Kvi2txt.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"
#include "Kvi2xml.h"
#include "KviSourceKinds.h"
#include "KviTableType.h"

namespace kv {

namespace {

struct TImportClass
{
    std::string_view Name;
    std::unique_ptr<TKvImportBaseComponent> (*Create)(TComponent* Owner);
};

constexpr TImportClass Classes[] = {
    {"TKvImportFromText", &NewImport<TKvImportFromText>},
    {"TKvImportFromHTML", &NewImport<TKvImportFromHTML>},
    {"TKvImportFromXML", &NewImport<TKvImportFromXML>},
    {"TKvImportFromXLS", &NewImport<TKvImportFromXLS>},
    {"TKvImportFromWKS", &NewImport<TKvImportFromWKS>},
    {"TKvImportFromQuattro", &NewImport<TKvImportFromQuattro>},
    {"TKvImportFromAccess", &NewImport<TKvImportFromAccess>},
    {"TKvImportFromBDE", &NewImport<TKvImportFromBDE>},
    {"TKvImportFromDataSet", &NewImport<TKvImportFromDataSet>},
};

} // namespace

std::unique_ptr<TKvImportBaseComponent> CreateImport(TTableTypeImport TableType, TComponent* Owner)
{
    if (const auto* const Kind = FindImportKind(TableType))
        return Kind->Create(Owner);
    throw Exception(FormatText("There is no import of the kind %d", {std::to_string(TableType)}));
}

std::span<const std::string_view> ImportClassNames()
{
    static const auto Names = [] {
        std::array<std::string_view, std::size(Classes)> Result;
        std::ranges::transform(Classes, Result.begin(), &TImportClass::Name);
        return Result;
    }();
    return Names;
}

std::unique_ptr<TKvImportBaseComponent> CreateImport(std::string_view ClassName, TComponent* Owner)
{
    for (const auto& Class : Classes)
        if (SameText(Class.Name, ClassName))
            return Class.Create(Owner);
    throw Exception(FormatText("There is no import of the class '%s'", {ClassName}));
}

TPublishedProperties ImportProperties(std::string_view ClassName)
{
    return WithDefaults(*CreateImport(ClassName));
}

std::unique_ptr<TKvImportBaseComponent> LoadImport(const std::string& FileName)
{
    return LoadImport(TIniFile(FileName));
}

std::unique_ptr<TKvImportBaseComponent> LoadImport(const TIniFile& File)
{
    const auto Name = File.ReadString("Common", "TableType", {});
    const auto TableType = TableTypeOfName(Name);
    if (!TableType)
        File.RefuseValue("Common", "TableType",
                         Name.empty() ? "it does not say what kind of source it is about"
                                      : FormatText("'%s' is no kind of source", {Name}));
    auto Import = CreateImport(*TableType);
    Import->ReadSpecification(File);
    return Import;
}

} // namespace kv
