// The run: record by record from the source into the destination, counting what was done.
#include "Kvibase.h"

#include <algorithm>
#include <cstdint>

#include "KvBulkRun.h"
#include "KvUserInterface.h"
#include "KviPace.h"
#include "Kvistat.h"

namespace kv {

namespace {

/// Sets a field as the record that is being written has it. Text of 64-bit integers never passes
/// through a narrower number.
void AssignValue(TField& Field, const TVariant& Value)
{
    if (!Value.HasValue() || (Value.IsString() && Value.Text().empty()))
        Field.Clear();
    else if (Field.DataType() == ftLargeint && Value.Kind() != vkInteger && !Value.IsString())
        Field.SetAsString(Value.ToText());
    else
        Field.SetValue(Value);
}

TKvIFate FateAfter(TKvIAction Action)
{
    switch (Action) {
    case iaAdd:     return rfAdded;
    case iaUpdate:  return rfUpdated;
    case iaDelete:  return rfDeleted;
    case iaUnknown: break;
    }
    return rfNotFound;
}

/// True for what is wrong with a value or a record: the others may be right.
bool ConcernsValue(TKvErrorRule Rule)
{
    switch (Rule) {
    case erConversion:
    case erRange:
    case erLength:
    case erRequired:
    case erUnique:
    case erForeignKey:
    case erCheck:      return true;
    default:           return false;
    }
}

/// True for what no record is to blame for: the next one would meet it too.
bool ConcernsDestination(const TKvErrorFacts& Facts)
{
    switch (Facts.Rule) {
    case erFormat:
    case erBusy:
    case erStorage:
    case erCancelled: return true;
    case erReadOnly:  return Facts.Field.empty();
    default:          return false;
    }
}

/// Nothing for what has no text, such as a day outside the calendar: that is no error of its own.
std::string TextForError(const TVariant& Value)
{
    try {
        return Value.IsArray() ? std::string() : Value.ToText();
    }
    catch (const Exception&) {
        return {};
    }
}

TKvBulkKind BulkKind(TImportMode Mode)
{
    switch (Mode) {
    case imAppend:       break;
    case imUpdate:       return bkUpdate;
    case imAppendUpdate: return bkAppendUpdate;
    case imDelete:       return bkDelete;
    case imCopy:         return bkCopy;
    }
    return bkAppend;
}

/// Tells the destination of a run, and of its end however it ends.
class TAnnouncedRun
{
public:
    TAnnouncedRun(TDataSet& Table, const TKvBulkRun& Run) : DataSet(Table) { DataSet.BeginBulk(Run); }
    TAnnouncedRun(const TAnnouncedRun&) = delete;
    TAnnouncedRun& operator=(const TAnnouncedRun&) = delete;
    ~TAnnouncedRun()
    {
        DataSet.EndBulk();
        DataSet.RecordTag = -1;
    }

private:
    TDataSet& DataSet;
};

/// When the progress dialog is to be refreshed: asked before each record.
class TRefreshing
{
public:
    TRefreshing(TKvIRunExtensions Extensions, const TKvIStatistic& Figures)
        : ByTime(Extensions.Contains(rxTimedProgress)), Statistic(Figures)
    {
    }

    bool IsByTime() const { return ByTime; }
    bool IsDue() { return ByTime ? Pace.IsDue() : IsStepDone(); }

private:
    bool IsStepDone()
    {
        const bool Done = Statistic.UpdateStep <= Records;
        Records = Done ? 1 : Records + 1;
        return Done;
    }

    const bool ByTime;
    const TKvIStatistic& Statistic;
    TKvIPace Pace;
    int Records = 0;                                // since the last refresh
};

} // namespace

void TKvImportBaseComponent::Prepare()
{
    HasSource = true;
    BeforeImport();
    BuildFieldMapping();
    BuildArrayIntersection();
    const bool SourceFirst = RunExtensions.Contains(rxSourceFirst);
    int Available = 0;
    const auto GoToFirst = [&] {
        GoFirst();
        Available = GetTotalCount();
    };
    if (SourceFirst)
        GoToFirst();
    const bool GoesOn = !IsCanceled();              // else the source may have dropped what it had loaded
    if (Observer && GoesOn)
        Observer->SourceOpened();
    FDataSet->DisableControls();
    HasControls = true;
    if (Mode == imCopy && GoesOn)
        EmptyDataSet();
    if (!SourceFirst)
        GoToFirst();
    Statistic.Reset();                              // the records deleted for imCopy are not counted
    Counting = true;
    Statistic.TotalCount = static_cast<int>(std::int64_t{std::min(Available, RowLast)} - RowFirst + 1);
    if (AnimatedStatus)
        ChangeProgressDlg(0, Statistic.TotalCount, 0);
    KeyFound = false;
    Aborted = false;
    TKvBulkRun Run{.Kind = BulkKind(Mode),
                   .ExpectedRecords = Statistic.TotalCount > 0 ? Statistic.TotalCount : -1};
    for (const auto& Key : KeyFields)
        Run.Keys.push_back(Key.Name);
    {
        const TAnnouncedRun Announced(*FDataSet, Run);
        ImportRecords();
    }
    FDataSet->First();
    HasControls = false;
    FDataSet->EnableControls();
    HasSource = false;
    AfterImport();
}

void TKvImportBaseComponent::EmptyDataSet()
{
    FDataSet->First();
    TKvIPace Pace;
    std::int64_t Count = 0;
    for (; !FDataSet->Eof(); ++Count) {
        if (AnimatedStatus && Pace.IsDue())
            UserInterface().ProcessMessages();
        if (IsCanceled())
            break;
        FDataSet->Delete();
        ++Statistic.TotalDeleted;
    }
    if (Observer)
        Observer->Emptied(Count);
}

void TKvImportBaseComponent::ImportRecords()
{
    TRefreshing Refreshing(RunExtensions, Statistic);
    while (!Aborted && !IsCanceled() && NeedMore()) {
        if (AnimatedStatus && Refreshing.IsDue())
            ShowProgress();
        ++Statistic.TotalImported;
        FDataSet->RecordTag = Statistic.TotalImported;
        Statistic.LastAction = iaUnknown;
        ImportRecord();
        Aborted = false;
        if (OnAfterRecordEvent)
            OnAfterRecordEvent(*this, Aborted);
        GoNext();
    }
    if (AnimatedStatus && Refreshing.IsByTime())
        ShowProgress();
}

void TKvImportBaseComponent::ImportRecord()
{
    InRecord = true;
    try {
        if (LoadRecord())
            StoreRecord();
        else if (InRecord)                          // a source that cannot read it has told so
            RecordDone(rfRefused);
    }
    catch (Exception& Error) {
        if (!InRecord || !RunExtensions.Contains(rxErrorsByRecord) || !ConcernsValue(Error.Facts.Rule))
            throw;
        TellRecord(Error);
        RecordFailed(Error);
    }
}

void TKvImportBaseComponent::ShowProgress() const
{
    const auto& S = Statistic;
    UpdateProgressDlg(MsgImporting, S.TotalImported, S.TotalErrors, S.TotalAdded, S.TotalDeleted,
                      S.TotalUpdated);
}

void TKvImportBaseComponent::StoreRecord()
{
    if (IsKeyMode() && !DatasetKeys.empty() && !KeyFields.empty()) {
        if (RunExtensions.Contains(rxErrorsByRecord))
            CheckKeys();
        KeyFound = FDataSet->Locate(DatasetKeys, BuildSearchValue());
    }
    if (OnBeforeUpdate)
        OnBeforeUpdate(*this);
    const auto Action = ActionForRecord();
    Statistic.LastAction = Action;
    switch (Action) {                               // counted before the values are written
    case iaAdd:
        FDataSet->Append();
        ++Statistic.TotalAdded;
        break;
    case iaUpdate:
        FDataSet->Edit();
        ++Statistic.TotalUpdated;
        break;
    case iaDelete:
        FDataSet->Delete();
        ++Statistic.TotalDeleted;
        break;
    case iaUnknown:
        break;
    }
    if (FDataSet->State() == dsEdit || FDataSet->State() == dsInsert)
        WriteRecord(Action);
    if (InRecord)
        RecordDone(FateAfter(Action));
}

TKvIAction TKvImportBaseComponent::ActionForRecord() const
{
    switch (Mode) {
    case imAppend:
    case imCopy:         return iaAdd;
    case imUpdate:       return KeyFound ? iaUpdate : iaUnknown;
    case imAppendUpdate: return KeyFound ? iaUpdate : iaAdd;
    case imDelete:       return KeyFound ? iaDelete : iaUnknown;
    }
    return iaUnknown;
}

const TVariant& TKvImportBaseComponent::BuildSearchValue()
{
    const auto ValueOf = [this](const TMappedField& Key) -> const TVariant& {
        return Key.Index >= 0 ? DestFields[static_cast<std::size_t>(Key.Index)].Value : Key.Value;
    };
    if (KeyFields.size() == 1)
        return ValueOf(KeyFields.front());
    const int High = static_cast<int>(KeyFields.size()) - 1;
    if (!SearchValue.IsArray() || SearchValue.HighBound() != High)
        SearchValue = TVariant::Array(0, High);
    for (int I = 0; I <= High; ++I)
        SearchValue[I] = ValueOf(KeyFields[static_cast<std::size_t>(I)]);
    return SearchValue;
}

/// Raises for a value that has no meaning in its field: to look for it would find nothing.
void TKvImportBaseComponent::CheckKeys()
{
    for (const auto& Key : KeyFields) {
        if (Key.Index < 0)                          // named twice: the first one counts
            continue;
        const auto& Dest = DestFields[static_cast<std::size_t>(Key.Index)];
        if (Dest.Index < 0)
            continue;
        const auto& Field = FDataSet->Fields(Dest.Index);
        if (!Dest.Value.IsString() || !IsTextField(Field.DataType()))
            Field.Convert(Dest.Value, CheckedKey);
    }
}

void TKvImportBaseComponent::WriteRecord(TKvIAction Action)
{
    const TMappedField* Current = nullptr;          // none while the whole record is stored
    try {
        for (const auto& Source : SourceFields) {
            if (Source.Index < 0)
                continue;
            Current = &DestFields[static_cast<std::size_t>(Source.Index)];
            if (Current->Index >= 0)
                AssignValue(FDataSet->Fields(Current->Index), Current->Value);
        }
        Current = nullptr;
        FDataSet->Post();
    }
    catch (Exception& Error) {
        FDataSet->Cancel();
        TellRecord(Error, Current);
        if (Current && Error.Facts.Value.empty())
            Error.Facts.Value = TextForError(Current->Value);
        if (RunExtensions.Contains(rxErrorsByRecord) && ConcernsDestination(Error.Facts)) {
            UndoCount(Action);
            throw;
        }
        if (OnErrorEvent)                           // else the record stays counted as what was tried
            UndoCount(Action);
        RecordFailed(Error);
    }
    catch (...) {                                   // ends the run; what comes next would post half a record
        FDataSet->Cancel();
        throw;
    }
}

void TKvImportBaseComponent::RecordFailed(const Exception& Error)
{
    if (IsLooking())
        throw;
    ++Statistic.TotalErrors;
    bool GoesOn = TellFailed(Error);
    if (OnErrorEvent) {
        Aborted = false;
        OnErrorEvent(*this, Error, Aborted);
        GoesOn = GoesOn && !Aborted;
    }
    if (!GoesOn)
        throw;
}

void TKvImportBaseComponent::RecordDone(TKvIFate Fate)
{
    InRecord = false;
    if (Observer)
        Observer->RecordDone(Fate);
}

/// False when the run shall end.
bool TKvImportBaseComponent::TellFailed(const Exception& Error)
{
    InRecord = false;
    return !Observer || Observer->RecordFailed(Error);
}

void TKvImportBaseComponent::UndoCount(TKvIAction Action)
{
    switch (Action) {
    case iaAdd:     --Statistic.TotalAdded; break;
    case iaUpdate:  --Statistic.TotalUpdated; break;
    case iaDelete:  --Statistic.TotalDeleted; break;
    case iaUnknown: break;
    }
}

} // namespace kv
