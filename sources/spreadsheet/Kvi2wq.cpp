#include "Kvi2wq.h"

#include "Kvwq.h"

namespace kv {

std::string TKvImportFromQuattro::FillFileFilters()
{
    return "QuattroPro file (*.wq1)|*.WQ1|" +
           TKvImportFromCell::FillFileFilters();
}

std::unique_ptr<TSpreadSheetFile> TKvImportFromQuattro::WorkBookCreation()
{
    return std::make_unique<TQuattroPro>();
}

} // namespace kv
