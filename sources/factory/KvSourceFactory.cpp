#include "KvSourceFactory.h"

#include "KvException.h"
#include "KvIniFile.h"
#include "KvText.h"
#include "Kvi2bde.h"
#include "Kvi2html.h"
#include "Kvi2ole.h"
#include "Kvi2txt.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"
#include "Kvi2xml.h"
#include "KviTableType.h"

namespace kv {

std::unique_ptr<TKvImportBaseComponent> CreateImport(TTableTypeImport TableType, TComponent* Owner)
{
    switch (TableType) {
    case teParadox:
    case teDBase:   return std::make_unique<TKvImportFromBDE>(Owner, TableType);
    case teText:    return std::make_unique<TKvImportFromText>(Owner);
    case teHTML:    return std::make_unique<TKvImportFromHTML>(Owner);
    case teXLS:     return std::make_unique<TKvImportFromXLS>(Owner);
    case teWKS:     return std::make_unique<TKvImportFromWKS>(Owner);
    case teQuattro: return std::make_unique<TKvImportFromQuattro>(Owner);
    case teXML:     return std::make_unique<TKvImportFromXML>(Owner);
    case teAccess:  return std::make_unique<TKvImportFromAccess>(Owner);
    }
    throw Exception(FormatText("There is no import of the kind %d", {std::to_string(TableType)}));
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
