// Kvi2xls - imports workbooks of Excel, of which it imports one sheet.
#pragma once

#include "Kvi2cell.h"

namespace kv {

class TKvImportFromXLS : public TKvImportFromCell
{
public:
    explicit TKvImportFromXLS(TComponent* Owner = nullptr) : TKvImportFromCell(Owner, teXLS, Extension()) {}

    std::string_view ClassName() const override { return "TKvImportFromXLS"; }

    static std::string Extension() { return ".XLS"; }
    static std::string FillFileFilters();

protected:
    std::unique_ptr<TSpreadSheetFile> WorkBookCreation() override;
};

} // namespace kv
