#include "Kvi2wks.h"

#include "Kvwks.h"

namespace kv {

std::string TKvImportFromWKS::FillFileFilters()
{
    return "Lotus 1-2-3 file (*.wk1)|*.WK1|Lotus 1-2-3 file (*.wk2)|*.WK2|Lotus Symphony "
           "file (*.wr1)|*.WR1|" + TKvImportFromCell::FillFileFilters();
}

std::unique_ptr<TSpreadSheetFile> TKvImportFromWKS::WorkBookCreation()
{
    return std::make_unique<TLotus123>();
}

} // namespace kv
