// Kvi2wks - imports worksheets of Lotus 1-2-3 and Symphony.
#pragma once

#include "Kvi2cell.h"

namespace kv {

class TKvImportFromWKS : public TKvImportFromCell
{
public:
    explicit TKvImportFromWKS(TComponent* Owner = nullptr) : TKvImportFromCell(Owner, teWKS, Extension()) {}

    std::string_view ClassName() const override { return "TKvImportFromWKS"; }

    static std::string Extension() { return ".WK1"; }
    static std::string FillFileFilters();

protected:
    std::unique_ptr<TSpreadSheetFile> WorkBookCreation() override;
};

} // namespace kv
