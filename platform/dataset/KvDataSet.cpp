#include "KvDataSet.h"

#include <algorithm>

#include "KvException.h"
#include "KvName.h"
#include "KvText.h"

namespace kv {

namespace {

/// The answer of `Ask`, for which `DataSet` is opened unless it is open. Nobody is told of that.
template <class TAsk> auto AskWhileOpen(TDataSet& DataSet, TAsk Ask)
{
    if (DataSet.Active())
        return Ask();
    DataSet.DisableControls();
    try {
        DataSet.Open();
        auto Answer = Ask();
        DataSet.Close();
        DataSet.EnableControls();
        return Answer;
    }
    catch (...) {
        DataSet.Close();
        DataSet.EnableControls();
        throw;
    }
}

} // namespace

void TDataSet::Open()
{
    if (Active())
        return;
    try {
        InternalOpen();
        FState = dsBrowse;
        Record.Values.assign(FFields.size(), Null);
        Record.Assigned.assign(FFields.size(), 0);
        InternalFirst();
    }
    catch (...) {
        Shut();
        throw;
    }
    DataChanged();
}

void TDataSet::Close()
{
    if (Active())
        Shut();
}

void TDataSet::Shut()
{
    InternalClose();                                // first: when it raises, the dataset stays open
    FState = dsInactive;
    Modified = false;
    ListedNames.clear();
    ListedFields.clear();
    LocateValues.clear();
    RequiredFields.clear();
    FFields.clear();
}

TField* TDataSet::FindField(std::string_view FieldName) const
{
    for (const auto Same : {&SameText, &SameName}) {
        const auto Found = std::ranges::find_if(
            FFields, [&](const auto& Field) { return Same(Field->FieldName(), FieldName); });
        if (Found != FFields.end())
            return Found->get();
    }
    return nullptr;
}

TField& TDataSet::FieldByName(std::string_view FieldName) const
{
    if (auto* const Field = FindField(FieldName))
        return *Field;
    Fail("field '" + std::string(FieldName) + "' not found",
         {.Field = std::string(FieldName), .Rule = erMissing});
}

// --- Asking before opening --------------------------------------------------------------------------

std::vector<TFieldDef> TDataSet::DescribeFields()
{
    return AskWhileOpen(*this, [this] {
        std::vector<TFieldDef> Defs;
        for (const auto& Field : FFields)
            Defs.push_back(Field->Def());
        return Defs;
    });
}

std::string TDataSet::KeyFields()
{
    const auto Properties = PublishedProperties();
    const auto* const Property = FindProperty(Properties, "IndexFieldName");
    if (!Property || Property->Kind != pkString)
        return {};
    return AskWhileOpen(*this, [&] { return Property->Get(*this).ToText(); });
}

// --- Moving and writing -----------------------------------------------------------------------------

TVariant TDataSet::FieldValues(std::string_view FieldNames)
{
    CheckActive();
    const auto& Listed = ResolveFields(FieldNames);
    auto Values = TVariant::Array(0, static_cast<int>(Listed.size()) - 1);
    for (std::size_t I = 0; I < Listed.size(); ++I)
        Values[static_cast<int>(I)] = Listed[I]->Value();
    return Values;
}

void TDataSet::First()
{
    CheckBrowseMode();
    InternalFirst();
    DataChanged();
}

void TDataSet::Next()
{
    CheckBrowseMode();
    if (InternalEof())
        return;
    InternalNext();
    DataChanged();
}

bool TDataSet::Eof()
{
    CheckActive();
    return FState == dsBrowse && InternalEof();
}

int TDataSet::RecordCount()
{
    CheckActive();
    return InternalRecordCount();
}

bool TDataSet::Locate(std::string_view KeyFields, const TVariant& KeyValues, TLocateOptions Options)
{
    CheckBrowseMode();
    const auto& Keys = ResolveFields(KeyFields);
    const int ValueCount = KeyValues.IsArray() ? KeyValues.HighBound() - KeyValues.LowBound() + 1 : 1;
    if (ValueCount != static_cast<int>(Keys.size()))
        Fail("Locate needs " + std::to_string(Keys.size()) + " key values, not " +
             std::to_string(ValueCount));
    LocateValues.resize(Keys.size());
    for (std::size_t I = 0; I < Keys.size(); ++I) {
        const TVariant& Value =
            KeyValues.IsArray() ? KeyValues[KeyValues.LowBound() + static_cast<int>(I)] : KeyValues;
        if (!Keys[I]->TryConvert(Value, LocateValues[I]))
            return false;
    }
    const bool Found = InternalLocate(Keys, LocateValues, Options);
    if (Found)
        DataChanged();
    return Found;
}

void TDataSet::Append()
{
    CheckBrowseMode();
    BeginRecord(dsInsert);
}

void TDataSet::Edit()
{
    if (FState == dsEdit || FState == dsInsert)
        return;
    CheckActive();
    if (InternalEof())
        Fail("no current record to edit");
    BeginRecord(dsEdit);
}

void TDataSet::Post()
{
    CheckActive();
    if (FState == dsBrowse)
        Fail("not in edit or insert mode");
    WriteTagged([this] {
        CheckRequired();
        if (FState == dsInsert)
            InternalInsert(Record);
        else if (Modified)
            InternalUpdate(Record);
    });
    EndRecord();
}

/// An error that does not know of another record concerns this one.
template <class TAct> void TDataSet::WriteTagged(TAct Act)
{
    try {
        Act();
    }
    catch (Exception& Error) {
        if (Error.Facts.Record < 0)
            Error.Facts.Record = RecordTag;
        throw;
    }
}

void TDataSet::Cancel()
{
    if (FState == dsEdit || FState == dsInsert)
        EndRecord();
}

void TDataSet::Delete()
{
    CheckActive();
    if (FState == dsInsert) {
        Cancel();
        return;
    }
    Cancel();
    if (InternalEof())
        Fail("no current record to delete");
    WriteTagged([this] { InternalDelete(); });
    DataChanged();
}

void TDataSet::EnableControls()
{
    if (DisableCount > 0 && --DisableCount == 0 && Active())
        DataChanged();
}

std::string TDataSet::DisplayName() const
{
    return Name.empty() ? std::string(ClassName()) : Name;
}

bool TDataSet::MatchesKey(const TVariant& Stored, const TVariant& Wanted, TLocateOptions Options)
{
    if (Options.IsEmpty() || !Stored.IsString() || !Wanted.IsString())
        return Stored == Wanted;
    auto Text = Stored.Text();
    if (Options.Contains(loPartialKey))
        Text = Text.substr(0, Wanted.Text().size());
    return Options.Contains(loCaseInsensitive) ? SameText(Text, Wanted.Text()) : Text == Wanted.Text();
}

void TDataSet::AddField(TFieldDef Def)
{
    const auto& Field = *FFields.emplace_back(std::make_unique<TField>(*this, FieldCount(), std::move(Def)));
    if (Field.Required())
        RequiredFields.push_back(&Field);
}

void TDataSet::RaiseInactive() const
{
    Fail("cannot perform this operation on a closed dataset");
}

void TDataSet::Fail(std::string_view Text, TKvErrorFacts Facts) const
{
    throw EDatabaseError(DisplayName() + ": " + std::string(Text), std::move(Facts));
}

void TDataSet::CheckBrowseMode()
{
    CheckActive();
    if (FState == dsBrowse)
        return;
    if (Modified)
        Post();
    else
        Cancel();
}

void TDataSet::CheckRequired() const
{
    for (const auto* const Field : RequiredFields) {
        const auto I = static_cast<std::size_t>(Field->Index());
        const bool Missing = Record.Assigned[I] ? !Record.Values[I].HasValue()
                                                : FState == dsInsert && !Field->HasDefault();
        if (Missing)
            throw EDatabaseError("Field '" + Field->FieldName() + "' must have a value",
                                 {.Field = Field->FieldName(), .Rule = erRequired});
    }
}

void TDataSet::BeginRecord(TDataSetState State)
{
    std::ranges::fill(Record.Assigned, std::uint8_t{0});
    Modified = false;
    FState = State;
}

void TDataSet::EndRecord()
{
    FState = dsBrowse;
    Modified = false;
    DataChanged();
}

TVariant TDataSet::FieldValue(const TField& Field)
{
    CheckActive();
    const auto I = static_cast<std::size_t>(Field.Index());
    if (FState != dsBrowse) {
        if (Record.Assigned[I])
            return Record.Values[I].IsString() ? TVariant::Borrow(Record.Values[I].Text()) : Record.Values[I];
        if (FState == dsInsert)
            return Null;
    }
    return InternalEof() ? TVariant(Null) : InternalGetValue(Field);
}

void TDataSet::RaiseNotWritable(const TField& Field) const
{
    if (FState < dsEdit)
        Fail("not in edit or insert mode");
    throw EDatabaseError("Field '" + Field.FieldName() + "' cannot be modified",
                         {.Field = Field.FieldName(), .Rule = erReadOnly, .Record = RecordTag});
}

const std::vector<TField*>& TDataSet::ResolveFields(std::string_view FieldNames)
{
    if (FieldNames == ListedNames && !ListedFields.empty())
        return ListedFields;
    std::vector<TField*> Found;
    for (std::size_t From = 0; From <= FieldNames.size();) {
        const auto To = std::min(FieldNames.find(';', From), FieldNames.size());
        Found.push_back(&FieldByName(Trim(FieldNames.substr(From, To - From))));
        From = To + 1;
    }
    ListedNames = FieldNames;
    ListedFields = std::move(Found);
    return ListedFields;
}

TDataChangeHandle TDataSet::AddDataChangeHandler(std::function<void()> Handler)
{
    auto Handle = std::make_shared<const std::function<void()>>(std::move(Handler));
    ChangeHandlers.push_back(Handle);
    return Handle;
}

/// A handler may add and remove others, itself among them, and change the dataset again.
void TDataSet::TellChangeHandlers()
{
    std::erase_if(ChangeHandlers, [](const auto& Handler) { return Handler.expired(); });
    const auto Listed = ChangeHandlers;
    for (const auto& Handler : Listed)
        if (const auto Alive = Handler.lock())
            (*Alive)();
}

} // namespace kv
