#include "Kvi2ds.h"

#include "KvPublish.h"

namespace kv {

TPublishedProperties TKvImportFromDataSet::PublishedProperties() const
{
    using T = TKvImportFromDataSet;
    auto Properties = TKvImportBaseComponent::PublishedProperties();
    Properties.push_back(PublishObject<T>("SourceDataset", &T::GetSourceDataset));
    return Properties;
}

void TKvImportFromDataSet::SetSourceDataset(TDataSet* Value)
{
    // The one before may be the destination too: it goes on telling of its end, which does no harm.
    FSourceDataset = Value;
    if (Value)
        Value->FreeNotification(*this);
}

void TKvImportFromDataSet::Notification(TComponent& Component, TOperation Operation)
{
    TKvImportBaseComponent::Notification(Component, Operation);
    if (Operation == opRemove && &Component == FSourceDataset)
        FSourceDataset = nullptr;
}

bool TKvImportFromDataSet::NotDefined(std::string& PropName)
{
    if (TKvImportBaseComponent::NotDefined(PropName))
        return true;
    if (FSourceDataset)
        return false;
    PropName = "SourceDataset";
    return true;
}

void TKvImportFromDataSet::DetectAutoMapping()
{
    FSourceDataset->Open();                         // a closed dataset does not know its fields
    MapFields([this](const TField& Field) {
        return FSourceDataset->FindField(Field.FieldName()) ? Field.FieldName() : std::string();
    });
}

void TKvImportFromDataSet::BeforeImport()
{
    Columns.Clear();
    FSourceDataset->Open();
}

TVariant TKvImportFromDataSet::GetFieldValue(const TVariant& Source)
{
    const auto* const Field =
        Columns.Find(Source, [this](const std::string& Each) { return FSourceDataset->FindField(Each); });
    return Field ? Field->PeekValue() : TKvImportBaseComponent::GetFieldValue(Source);
}

} // namespace kv
