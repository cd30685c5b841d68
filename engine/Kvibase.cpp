#include "Kvibase.h"

#include <deque>
#include <exception>
#include <utility>

#include "KvPublish.h"
#include "KvText.h"
#include "KvUserInterface.h"
#include "Kvistat.h"

namespace kv {

namespace {

constexpr std::string_view CharacterSetNames[] = {"csiANSI_WINDOWS", "csiASCII_MSDOS"};
constexpr std::string_view ModeNames[] = {"imAppend", "imUpdate", "imAppendUpdate", "imDelete", "imCopy"};
constexpr std::string_view OptionNames[] = {"soShowMessage", "soExtendedStatistic"};

constexpr char MsgNotSpecified[] = "Property %s wasn't specified.";
constexpr char MsgCanceled[] = "Data importing was canceled by user.";
constexpr char MsgExecuted[] = "The data importing successfuly is finished.";
constexpr char MsgFailed[] = "Error of data import.";

/// Data formats outlive their component: handlers and forms may keep reading them.
TKvIDataFormats& NewDataFormats()
{
    static auto& Kept = *new std::deque<TKvIDataFormats>; // never destroyed
    return Kept.emplace_back();
}

/// The busy cursor for the length of a run.
class TBusyCursor
{
public:
    TBusyCursor() { UserInterface().SetBusyCursor(true); }
    TBusyCursor(const TBusyCursor&) = delete;
    TBusyCursor& operator=(const TBusyCursor&) = delete;
    ~TBusyCursor() { UserInterface().SetBusyCursor(false); }
};

/// An automatic mapping never survives its run, however the run ends.
class TRunMappings
{
public:
    explicit TRunMappings(TStrings& Mappings) : Lines(Mappings), Automatic(Mappings.IsEmpty()) {}
    TRunMappings(const TRunMappings&) = delete;
    TRunMappings& operator=(const TRunMappings&) = delete;
    ~TRunMappings()
    {
        if (Automatic)
            Lines.Clear();
    }

    bool IsAutomatic() const { return Automatic; }

private:
    TStrings& Lines;
    const bool Automatic;
};

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
            PublishObject<T>("DataSet", [](const T& Self) { return Self.FDataSet; }),
            Publish("DatasetKeys", &T::DatasetKeys),
            PublishStrings("Mappings", &T::FMappings),
            Publish("Mode", &T::Mode, ModeNames),
            Publish("Options", &T::Options, OptionNames),
            Publish("TitleStatus", &T::TitleStatus),
            PublishObject<T>("Statistic", [](const T& Self) { return const_cast<TKvIStatistic*>(&Self.Statistic); }),
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
            PublishEvent("OnAfterSaveSpecification")};
}

void TKvImportBaseComponent::Execute()
{
    Statistic.Result = irUnknown;
    FError = Exception(std::string());
    if (OnBeforeExecute)
        OnBeforeExecute(*this);
    std::string PropName;
    if (NotDefined(PropName))
        throw Exception(FormatText(MsgNotSpecified, {PropName}));
    if (DatasetKeys.empty() && IsKeyMode())
        throw Exception(FormatText(MsgNotSpecified, {DatasetKeys})); // the text has always shown the empty value

    {
        const TBusyCursor Busy;
        const std::string Outcome = Run();
        if (AnimatedStatus) {
            const auto& S = Statistic;
            UpdateProgressDlg(Outcome, 100, S.TotalErrors, S.TotalAdded, S.TotalDeleted, S.TotalUpdated);
            DestroyProgressDlg();
        }
        else if (Options.Contains(soShowMessage)) {
            UserInterface().ShowMessage(mkInformation, Outcome);
        }
    }
    if (OnAfterExecute)
        OnAfterExecute(*this);
}

std::string TKvImportBaseComponent::Run()
{
    InRecord = Canceled = false;
    try {
        if (AnimatedStatus)
            CreateProgressDlg(TitleStatus, MsgImporting, "&Cancel", "Processed:", "Errors:", "Added:", "Updated:",
                              "Deleted:", Options.Contains(soExtendedStatistic));
        const TRunMappings Mapped(FMappings);
        if (Mapped.IsAutomatic())
            DetectAutoMapping();
        Prepare();
        Statistic.Result = ProgressCanceled() || Aborted || Canceled ? irCanceled : irExecuted;
    }
    catch (const Exception& Error) {
        Statistic.Result = EndByError(Error);
    }
    catch (const std::exception& Error) {
        Statistic.Result = EndByError(Exception(Error.what()));
    }
    catch (...) {                                   // handlers may throw anything
        Statistic.Result = EndByError(Exception("Unknown error"));
    }
    switch (Statistic.Result) {
    case irExecuted: return MsgExecuted;
    case irCanceled: return MsgCanceled;
    default:         return MsgFailed;
    }
}

/// What an observer has cancelled may end by an error: giving up a wait for a lock is one.
TKvIResult TKvImportBaseComponent::EndByError(const Exception& Error)
{
    const bool WasCanceled = Observer && !Observer->KeepsRunning();
    if (InRecord && WasCanceled)
        RecordDone(rfBrokenOff);
    else if (InRecord)
        TellFailed(Error);
    FError = Error;
    return WasCanceled ? irCanceled : irFailed;
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
    return {.Unit = PositionUnit(), .Number = Statistic.TotalImported};
}

bool TKvImportBaseComponent::KeepsRunning() const
{
    if (AnimatedStatus)
        UserInterface().ProcessMessages();
    return !ProgressCanceled() && (!Observer || Observer->KeepsRunning());
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
