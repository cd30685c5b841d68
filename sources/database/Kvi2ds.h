// Kvi2ds - copies the records of another dataset.
#pragma once

#include "Kvibase.h"
#include "KviSourceColumns.h"

namespace kv {

/// Imports the records of `SourceDataset` as its cursor delivers them: its filter and order decide
/// which and in what order, RowFirst and RowLast do not. Source columns are field names; a name that
/// the source does not have is a constant that imports itself.
class TKvImportFromDataSet : public TKvImportBaseComponent
{
public:
    using TKvImportBaseComponent::TKvImportBaseComponent;

    std::string_view ClassName() const override { return "TKvImportFromDataSet"; }
    TPublishedProperties PublishedProperties() const override;

    /// The records to copy. Not owned; forgotten when it is destroyed. A run opens it and leaves it open.
    TDataSet* GetSourceDataset() const { return FSourceDataset; }
    void SetSourceDataset(TDataSet* Value);

protected:
    bool NotDefined(std::string& PropName) override;
    void DetectAutoMapping() override;
    void BeforeImport() override;
    void GoFirst() override { FSourceDataset->First(); }
    int GetTotalCount() override { return FSourceDataset->RecordCount(); }
    bool NeedMore() override { return !FSourceDataset->Eof(); }
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override { FSourceDataset->Next(); }

    void Notification(TComponent& Component, TOperation Operation) override;

private:
    TDataSet* FSourceDataset = nullptr;
    TKvSourceColumns<TField*> Columns;              // of one run; none: no such field
};

} // namespace kv
