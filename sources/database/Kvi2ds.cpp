#include "Kvi2ds.h"

#include <utility>

#include "KvException.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr char MsgNotSpecified[] = "Property %s wasn't specified.";
constexpr char MsgSameTable[] = "Source and destination are the same table";
constexpr char MsgBeingWritten[] =
    "A record of the source is being written; it has to be stored or dropped first";

} // namespace

TPublishedProperties TKvImportFromDataSet::PublishedProperties() const
{
    using T = TKvImportFromDataSet;
    auto Properties = TKvImportBaseComponent::PublishedProperties();
    Properties.push_back(PublishReference("SourceDataset", &T::GetSourceDataset, &T::SetSourceDataset));
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
    if (!IsLooking())
        CheckOtherTable();
}

/// A copy empties its destination first; a cursor cannot read and write.
void TKvImportFromDataSet::CheckOtherTable() const
{
    const auto* const Destination = GetDataSet();
    const auto Identity = FSourceDataset->TableIdentity();
    if (Destination == FSourceDataset ||
        (Mode == imCopy && !Identity.empty() && Destination->TableIdentity() == Identity))
        throw Exception(MsgSameTable);
}

TVariant TKvImportFromDataSet::GetFieldValue(const TVariant& Source)
{
    const auto* const Field =
        Columns.Find(Source, [this](const std::string& Each) { return FSourceDataset->FindField(Each); });
    return Field ? Field->PeekValue() : TKvImportBaseComponent::GetFieldValue(Source);
}

TVariant TKvImportFromDataSet::SourceRecord()
{
    if (!FSourceDataset || !FSourceDataset->Active() || FSourceDataset->Eof())
        return Null;
    const int Count = FSourceDataset->FieldCount();
    auto Values = TVariant::Array(0, Count - 1);
    for (int I = 0; I < Count; ++I)
        Values[I] = FSourceDataset->Fields(I).Value();
    return Values;
}

// A look.

void TKvImportFromDataSet::BeforeLook(const TKvISourceLook&)
{
    if (!FSourceDataset)
        throw Exception(FormatText(MsgNotSpecified, {"SourceDataset"}));
    auto& Source = *FSourceDataset;
    if (Source.State() == dsEdit || Source.State() == dsInsert)
        throw Exception(MsgBeingWritten);
    Source.DisableControls();
    HoldsControls = true;
    KeyBefore = Null;
    if (const auto Keys = Source.KeyFields(); Source.Active() && !Keys.empty() && !Source.Eof())
        KeyBefore = Source.FieldValues(Keys);
    BeforeImport();
}

std::vector<TKvISourceColumn> TKvImportFromDataSet::SourceColumns(int)
{
    std::vector<TKvISourceColumn> Result;
    for (int I = 0; I < FSourceDataset->FieldCount(); ++I) {
        const auto& Field = FSourceDataset->Fields(I);
        Result.push_back({.Name = Field.FieldName(),
                          .Title = Field.FieldName(),
                          .DataType = Field.DataType(),
                          .Size = Field.Size()});
    }
    return Result;
}

/// Lets controls see the source again, whatever happens before.
class TKvImportFromDataSet::TControls
{
public:
    explicit TControls(TDataSet& Source) : DataSet(Source) {}
    TControls(const TControls&) = delete;
    TControls& operator=(const TControls&) = delete;
    ~TControls() { DataSet.EnableControls(); }

private:
    TDataSet& DataSet;
};

void TKvImportFromDataSet::AfterLook()
{
    if (!std::exchange(HoldsControls, false) || !FSourceDataset)
        return;
    const TControls Shown(*FSourceDataset);
    if (!FSourceDataset->Active())
        return;
    if (!KeyBefore.IsArray() || !FSourceDataset->Locate(FSourceDataset->KeyFields(), KeyBefore))
        FSourceDataset->First();
}

} // namespace kv
