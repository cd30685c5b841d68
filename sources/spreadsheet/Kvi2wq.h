// Kvi2wq - imports worksheets of Quattro Pro for DOS.
#pragma once

#include "Kvi2cell.h"

namespace kv {

class TKvImportFromQuattro : public TKvImportFromCell
{
public:
    explicit TKvImportFromQuattro(TComponent* Owner = nullptr)
        : TKvImportFromCell(Owner, teQuattro, Extension())
    {
    }

    std::string_view ClassName() const override { return "TKvImportFromQuattro"; }

    static std::string Extension() { return ".WQ1"; }
    static std::string FillFileFilters();

protected:
    std::unique_ptr<TSpreadSheetFile> WorkBookCreation() override;
};

} // namespace kv
