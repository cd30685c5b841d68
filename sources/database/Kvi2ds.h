// Kvi2ds - copies the records of another dataset.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Kvibase.h"
#include "KviSourceColumns.h"

namespace kv {

/// Imports the records of `SourceDataset` as its cursor delivers them: its filter and order decide
/// which and in what order, RowFirst and RowLast do not. Source columns are field names; a name that
/// the source does not have is a constant that imports itself. A run fails when the source is the
/// destination, or with imCopy another dataset of the same table.
///
/// A look opens the source and leaves it open, as a run does, but with the cursor where it stood if the
/// source has a key, else on the first record. Controls are not told of its moves.
class TKvImportFromDataSet : public TKvImportBaseComponent
{
public:
    using TKvImportBaseComponent::TKvImportBaseComponent;

    std::string_view ClassName() const override { return "TKvImportFromDataSet"; }
    TPublishedProperties PublishedProperties() const override;

    /// The records to copy. Not owned; forgotten when it is destroyed. A run opens it and leaves it open.
    TDataSet* GetSourceDataset() const { return FSourceDataset; }
    void SetSourceDataset(TDataSet* Value);

    /// The values of all fields.
    TVariant SourceRecord() override;
    /// Of a source that is open, whoever has opened it.

protected:
    bool NotDefined(std::string& PropName) override;
    void DetectAutoMapping() override;
    void BeforeImport() override;
    void GoFirst() override { FSourceDataset->First(); }
    int GetTotalCount() override { return FSourceDataset->RecordCount(); }
    bool NeedMore() override { return !FSourceDataset->Eof(); }
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override { FSourceDataset->Next(); }
    /// Raises Exception when there is no source, or when a record of it is being written: to move would store
    /// it, and a look changes nothing.
    void BeforeLook(const TKvISourceLook& What) override;
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    void AfterLook() override;

    void Notification(TComponent& Component, TOperation Operation) override;

private:
    class TControls;

    void CheckOtherTable() const;

    TDataSet* FSourceDataset = nullptr;
    TKvSourceColumns<TField*> Columns;              // of one run; none: no such field
    bool HoldsControls = false;                     // of the source, in a look
    TVariant KeyBefore;                             // of the record that was current before a look
};

} // namespace kv
