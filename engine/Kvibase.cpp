#include "Kvibase.h"

#include <deque>

#include "KvPublish.h"

namespace kv {

namespace {

constexpr std::string_view CharacterSetNames[] = {"csiANSI_WINDOWS", "csiASCII_MSDOS"};
constexpr std::string_view ModeNames[] = {"imAppend", "imUpdate", "imAppendUpdate", "imDelete", "imCopy"};
constexpr std::string_view OptionNames[] = {"soShowMessage", "soExtendedStatistic"};
constexpr std::string_view RunExtensionNames[] = {
    "rxRestoresControls", "rxTimedProgress", "rxNoNumberBoxes", "rxExactNumbers",   "rxWrittenForms",
    "rxFormatsInForce",   "rxTimesAlone",    "rxOemTextOnly",   "rxErrorsByRecord", "rxSourceFirst",
    "rxNoEmptyRecords"};

/// Data formats outlive their component: handlers and forms may keep reading them.
TKvIDataFormats& NewDataFormats()
{
    static auto& Kept = *new std::deque<TKvIDataFormats>; // never destroyed
    return Kept.emplace_back();
}

} // namespace

TKvImportBaseComponent::TKvImportBaseComponent(TComponent* Owner)
    : TKvImportBaseComponent(Owner, teText, Extension())
{
}

TKvImportBaseComponent::TKvImportBaseComponent(TComponent* Owner, TTableTypeImport Type,
                                               std::string_view DefaultExtension)
    : TComponent(Owner),
      DataFormats(NewDataFormats()),
      TableType(Type),
      SourceFileName("KvImport" + std::string(DefaultExtension))
{
}

TKvImportBaseComponent::~TKvImportBaseComponent() = default;

TPublishedProperties TKvImportBaseComponent::PublishedProperties() const
{
    using T = TKvImportBaseComponent;
    return {Publish("About", &T::About),
            Publish("AnimatedStatus", &T::AnimatedStatus),
            Publish("CharacterSet", &T::CharacterSet, CharacterSetNames),
            PublishObject<T>("DataFormats", [](const T& Self) { return &Self.DataFormats; }),
            PublishReference("DataSet", &T::GetDataSet, &T::SetDataSet),
            Publish("DatasetKeys", &T::DatasetKeys),
            PublishStrings("Mappings", &T::FMappings),
            Publish("Mode", &T::Mode, ModeNames),
            Publish("Options", &T::Options, OptionNames),
            Publish("TitleStatus", &T::TitleStatus),
            PublishObject<T>("Statistic",
                             [](const T& Self) { return const_cast<TKvIStatistic*>(&Self.Statistic); }),
            PublishEvent("OnErrorEvent"),
            PublishEvent("OnGetCellParams"),
            PublishEvent("OnBeforeExecute"),
            PublishEvent("OnAfterExecute"),
            PublishEvent("OnBeforeRecordEvent"),
            PublishEvent("OnAfterRecordEvent"),
            PublishEvent("OnBeforeUpdate"),
            PublishEvent("OnBeforeLoadSpecification"),
            PublishEvent("OnAfterLoadSpecification"),
            PublishEvent("OnBeforeSaveSpecification"),
            PublishEvent("OnAfterSaveSpecification"),
            Publish("RunExtensions", &T::RunExtensions, RunExtensionNames)};
}

void TKvImportBaseComponent::SetDataSet(TDataSet* Value)
{
    // Assigning a destination never changes DatasetKeys: the key list of the dataset would replace
    // them only where both are equal already.
    FDataSet = Value;
    if (Value)
        Value->FreeNotification(*this);
}

void TKvImportBaseComponent::Notification(TComponent& Component, TOperation Operation)
{
    TComponent::Notification(Component, Operation);
    if (Operation == opRemove && &Component == FDataSet)
        FDataSet = nullptr;
}

TKvISourcePosition TKvImportBaseComponent::SourcePosition() const
{
    return {.Unit = PositionUnit(), .Number = IsLooking() ? LookedAt : Statistic.TotalImported};
}

std::string TKvImportBaseComponent::GetKeyList(const TDataSet* DataSet)
{
    if (!DataSet)
        return {};
    const auto Properties = DataSet->PublishedProperties();
    const auto* const Property = FindProperty(Properties, "IndexFieldName");
    return Property && Property->Kind == pkString ? Property->Get(*DataSet).ToText() : std::string();
}

std::string TKvImportBaseComponent::GetTableName() const
{
    if (!FDataSet)
        return {};
    const auto Properties = FDataSet->PublishedProperties();
    if (const auto* const Table = FindProperty(Properties, "TableName"); Table && Table->Kind == pkString)
        return Table->Get(*FDataSet).ToText();
    if (const auto* const Sql = FindProperty(Properties, "SQL"); Sql && Sql->Kind == pkStrings)
        return Sql->Get(*FDataSet).ToText();
    return {};
}

bool TKvImportBaseComponent::NotDefined(std::string& PropName)
{
    if (FDataSet)
        return false;
    PropName = "DataSet";
    return true;
}

void TKvImportBaseComponent::DetectAutoMapping()
{
    MapFields([](const TField& Field) { return Field.FieldName(); });
}

} // namespace kv
