#include "Kvi2xls.h"

#include "Kvxls.h"

namespace kv {

std::string TKvImportFromXLS::FillFileFilters()
{
    return "Excel spreadsheet (*.xls)|*.XLS|Excel file (*.xls)|*.XLS|" +
           TKvImportFromCell::FillFileFilters();
}

std::unique_ptr<TSpreadSheetFile> TKvImportFromXLS::WorkBookCreation()
{
    return std::make_unique<TMSExcel>();
}

} // namespace kv
