#include "Kvi2ole.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "KvAccessSession.h"
#include "KvException.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xaOpensForMapping", "xaSkipsToRowFirst",
                                               "xaUnreadableValues"};

constexpr char MsgNotSpecified[] = "Property %s wasn't specified.";
constexpr char MsgCancelled[] = ": reading was canceled by user";
constexpr int PreviewRows = 20;
constexpr int PollRecords = 4096;                   // between two looks at the Cancel button

int FieldNamed(const TAccessRecordset& Recordset, std::string_view Name)
{
    for (std::size_t I = 0; I < Recordset.Fields().size(); ++I)
        if (Recordset.Fields()[I].Name == Name)
            return static_cast<int>(I);
    return -1;
}

/// The field of a dataset that holds such values.
TFieldType FieldTypeOf(TAccessFieldType Type)
{
    switch (Type) {
    case afBoolean:  return ftBoolean;
    case afByte:
    case afInteger:  return ftSmallint;
    case afLong:
    case afComplex:  return ftInteger;
    case afCurrency: return ftCurrency;
    case afSingle:
    case afDouble:   return ftFloat;
    case afDateTime: return ftDateTime;
    case afBinary:   return ftVarBytes;
    case afText:     return ftString;
    case afOle:      return ftOle;
    case afMemo:     return ftMemo;
    case afGuid:     return ftGuid;
    case afDecimal:  return ftBCD;
    case afBigInt:   return ftLargeint;
    }
    return ftUnknown;
}

std::vector<TKvISourceColumn> ColumnsOf(const TAccessRecordset& Recordset)
{
    std::vector<TKvISourceColumn> Result;
    for (const auto& Field : Recordset.Fields()) {
        const bool HasSize = Field.Type == afText || Field.Type == afBinary;
        Result.push_back({.Name = Field.Name,
                          .Title = Field.Name,
                          .DataType = FieldTypeOf(Field.Type),
                          .Size = HasSize ? static_cast<int>(Field.Size) : 0,
                          .TypeName = AccessTypeText(Field)});
    }
    return Result;
}

/// The import with what a preview needs of a look.
struct TPreviewOfAccess final : TKvImportFromAccess
{
    using TKvImportFromAccess::GoFirst;
    using TKvImportFromAccess::GoNext;
    using TKvImportFromAccess::NeedMore;
    using TKvImportFromAccess::OpenForLook;
    using TKvImportFromAccess::SourceColumns;

    /// Of the current record; null where it cannot be read, if the extensions have it so.
    TVariant ShownValue(const std::string& Column)
    {
        try {
            return GetFieldValue(Column);
        }
        catch (const EDatabaseError&) {
            if (!Extensions.Contains(xaUnreadableValues))
                throw;
            return Null;
        }
    }
};

} // namespace

TKvImportFromAccess::TKvImportFromAccess(TComponent* Owner)
    : TKvImportFromFile(Owner, teAccess, Extension()), Session(std::make_unique<TKvAccessSession>())
{
}

TKvImportFromAccess::~TKvImportFromAccess() = default;

TPublishedProperties TKvImportFromAccess::PublishedProperties() const
{
    using T = TKvImportFromAccess;
    return PublishAfter(TKvImportFromFile::PublishedProperties(),
                        {AsPlace(Publish("TableName", &T::TableName)),
                         AsPlace(Publish("Patience", &T::Patience)),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

std::string TKvImportFromAccess::FillFileFilters()
{
    return "MS Access database (*.mdb)|*.MDB|" + TKvImportFromFile::FillFileFilters();
}

bool TKvImportFromAccess::NotDefined(std::string& PropName)
{
    if (TKvImportFromFile::NotDefined(PropName))
        return true;
    if (!TableName.empty())
        return false;
    PropName = "TableName";
    return true;
}

/// The lines name fields as the table writes them: that is how a run finds them.
void TKvImportFromAccess::DetectAutoMapping()
{
    EndLook();                                      // what a look has opened is no help to a run
    const bool Opens = Extensions.Contains(xaOpensForMapping);
    if (Opens)
        OpenSession(TableName, false);
    else if (!Session->Holds(TableName, SourceFileName)) // a failed run may have left it open
        throw Exception(SourceFileName + ": table " + TableName +
                            " is not open yet, so that its fields are not known; mappings are needed",
                        {.FileName = SourceFileName});
    for (int I = 0; I < GetDataSet()->FieldCount(); ++I) {
        const auto& FieldName = GetDataSet()->Fields(I).FieldName();
        for (const auto& Field : Session->Recordset()->Fields())
            if (Opens ? SameText(Field.Name, FieldName) : Field.Name == FieldName)
                Mappings().Add(FieldName + "=" + Field.Name);
    }
    if (Opens)
        Session->Close(true);
    if (Mappings().IsEmpty())
        throw Exception(SourceFileName + ": no field of table " + TableName +
                            " has the name of a field of the destination",
                        {.FileName = SourceFileName});
}

// The run.

/// A run that is cancelled while the database keeps it waiting has no more records.
template <class TAct> void TKvImportFromAccess::UnlessCancelled(TAct Act)
{
    try {
        Act();
    }
    catch (const EDatabaseError& Error) {
        if (IsLooking() || Error.Facts.Rule != erCancelled)
            throw;
        Session->Close(true);
    }
}

/// What is open already may stay so where it `MayKeep`.
void TKvImportFromAccess::OpenSession(const std::string& Table, bool MayKeep)
{
    const auto Continue = [this] { return KeepsRunning(); };
    Remarks.clear();
    if (Patience > 0)
        Session->Patience = std::chrono::seconds(Patience);
    if (MayKeep)
        Session->OpenOrKeep(Table, SourceFileName, Continue);
    else
        Session->Open(Table, SourceFileName, Continue);
    if (Session->Recordset() && Extensions.Contains(xaUnreadableValues))
        NoteUnreadable();
}

void TKvImportFromAccess::NoteUnreadable()
{
    for (const auto& Field : Session->Recordset()->Fields())
        if (!IsReadable(Field.Type))
            Remarks.push_back(
                {.Kind = srColumnLeftOut, .Name = Field.Name, .Reason = UnreadableType(Field.Type)});
}

void TKvImportFromAccess::BeforeImport()
{
    Columns.Clear();
    IsForLook = false;
    UnlessCancelled([this] { OpenSession(TableName, false); });
}

void TKvImportFromAccess::AfterImport()
{
    Session->Close(true);
}

void TKvImportFromAccess::GoFirst()
{
    CurrentRow = 0;
    auto* const Recordset = Session->Recordset();
    if (!Recordset)
        return;                                     // cancelled
    const int First = Extensions.Contains(xaSkipsToRowFirst) ? RowFirst : 1;
    UnlessCancelled([this, Recordset, First] {
        Recordset->MoveFirst();
        for (int Number = 1; Number < First && !Recordset->Eof(); ++Number) {
            Recordset->MoveNext();
            if (Number % PollRecords == 0 && !KeepsRunning())
                throw EDatabaseError(SourceFileName + MsgCancelled,
                                     {.FileName = SourceFileName, .Rule = erCancelled});
        }
    });
}

/// Records count from the table's first.
TKvISourcePosition TKvImportFromAccess::SourcePosition() const
{
    const int Skipped = Extensions.Contains(xaSkipsToRowFirst) && RowFirst > 1 ? RowFirst - 1 : 0;
    const int Taken = IsLooking() ? CurrentRow + 1 : Statistic.TotalImported;
    return {.Unit = PositionUnit(), .Number = std::int64_t{Skipped} + Taken};
}

void TKvImportFromAccess::GoNext()
{
    ++CurrentRow;
    // What is wrong with records that nobody wants does not matter.
    if (!Extensions.Contains(xaUnreadableValues) || WantsMoreThan(CurrentRow))
        UnlessCancelled([this] { Session->Recordset()->MoveNext(); });
}

bool TKvImportFromAccess::NeedMore()
{
    const auto* const Recordset = Session->Recordset();
    return Recordset && !Recordset->Eof() && WantsMoreThan(CurrentRow);
}

int TKvImportFromAccess::GetTotalCount()
{
    return Session->Recordset() ? Session->Recordset()->RecordCount() : TKvImportFromFile::GetTotalCount();
}

bool TKvImportFromAccess::LoadRecord()
{
    try {
        return TKvImportFromFile::LoadRecord();
    }
    catch (const EDatabaseError& Error) {
        const bool IsOfValue = Error.Facts.FileName == SourceFileName && !Error.Facts.Field.empty();
        if (!IsOfValue || !Extensions.Contains(xaUnreadableValues))
            throw;
        RecordFailed(Error);
        return false;
    }
}

TVariant TKvImportFromAccess::FieldValue(int Field)
{
    return Session->Value(Field, DataFormats.DecimalSeparator);
}

TVariant TKvImportFromAccess::GetFieldValue(const TVariant& Source)
{
    const int Field = Columns.Find(
        Source, [this](const std::string& Each) { return FieldNamed(*Session->Recordset(), Each); });
    return Field >= 0 ? FieldValue(Field) : TKvImportFromFile::GetFieldValue(Source);
}

TVariant TKvImportFromAccess::SourceRecord()
{
    const auto* const Recordset = Session->Recordset();
    if (!Recordset || Recordset->Eof())
        return Null;
    const auto Count = static_cast<int>(Recordset->Fields().size());
    auto Values = TVariant::Array(0, Count - 1);
    for (int I = 0; I < Count; ++I) {
        try {
            const auto Lent = FieldValue(I);
            Values[I] = Lent;
        }
        catch (const Exception&) {
            Values[I] = Null;
        }
    }
    return Values;
}

// A look.

void TKvImportFromAccess::OpenForLook(const std::string& Table)
{
    Columns.Clear();
    OpenSession(Table, IsForLook);                  // a failed run may have left it open
    IsForLook = true;
}

void TKvImportFromAccess::BeforeLook(const TKvISourceLook&)
{
    if (TableName.empty())
        throw Exception(FormatText(MsgNotSpecified, {"TableName"}));
    OpenForLook(TableName);
}

std::vector<TKvISourceColumn> TKvImportFromAccess::SourceColumns(int)
{
    auto Result = ColumnsOf(*Session->Recordset());
    if (Extensions.Contains(xaUnreadableValues))
        std::erase_if(Result, [this](const TKvISourceColumn& Column) {
            return std::ranges::count(Remarks, Column.Name, &TKvISourceRemark::Name) > 0;
        });
    return Result;
}

void TKvImportFromAccess::AfterLook()
{
    if (!IsForLook)
        Session->Close(true);
}

void TKvImportFromAccess::EndLook()
{
    if (std::exchange(IsForLook, false))
        Session->Close(true);
}

std::vector<TKvISourcePart> TKvImportFromAccess::SourceParts()
{
    OpenForLook({});
    std::vector<TKvISourcePart> Parts;
    for (const auto& Table : Session->Database().TableDefs()) {
        Parts.push_back(Describe(Table.Name));
        Parts.back().IsSystem = Table.IsSystem;
    }
    return Parts;
}

/// A table that cannot be opened says why.
TKvISourcePart TKvImportFromAccess::Describe(const std::string& Table)
{
    TKvISourcePart Part;
    Part.Name = Table;
    try {
        const auto Recordset = Session->OpenTable(Table);
        Part.Rows = Recordset->RecordCount();
        Part.Fields = ColumnsOf(*Recordset);
        Part.Columns = static_cast<int>(Part.Fields.size());
    }
    catch (const EDatabaseError& Error) {
        if (Error.Facts.Rule == erCancelled)
            throw;
        Part.Error = Error.Message;
    }
    return Part;
}

void TKvImportFromAccess::SelectPart(int, const TKvISourcePart& Part)
{
    TableName = Part.Name;
}

// Routines without a component.

void GetAccessTables(TStrings& Items, const std::string& DatabaseName, const std::string& TableName)
{
    if (DatabaseName.empty())
        throw Exception(FormatText(MsgNotSpecified, {"DatabaseName"}));
    TKvAccessSession Session;
    Session.Open(TableName, DatabaseName);
    Items.BeginUpdate();
    if (Session.Recordset())
        for (const auto& Field : Session.Recordset()->Fields())
            Items.Add(Field.Name);
    else
        for (const auto& Table : Session.Database().TableDefs())
            Items.Add(Table.Name);
    Items.EndUpdate();
    Session.Close(true);
}

void LoadAccessPreview(TPersistent* Sender, const std::string& TableName, const std::string& FileName,
                       std::string& FieldNames, bool Flag, TStrings* Columns,
                       const TPreviewCallback& Callback, TKvIAccessExtensions Extensions)
{
    TPreviewOfAccess Import;
    Import.AnimatedStatus = false;
    Import.SourceFileName = FileName;
    Import.Extensions = Extensions;
    Import.OpenForLook(TableName);
    FieldNames.clear();
    if (TableName.empty())
        return;
    const auto Shown = Import.SourceColumns(0);
    for (const auto& Column : Shown) {
        if (!FieldNames.empty() && !FieldNames.ends_with(';'))
            FieldNames += ';';
        FieldNames += Column.Name;
        if (Columns)
            Columns->Add(Column.Name);
    }
    const auto Count = static_cast<int>(Shown.size());
    Import.GoFirst();
    for (int Row = 1; Row <= PreviewRows && Import.NeedMore(); ++Row) {
        auto Values = TVariant::Array(0, Count - 1);
        for (int I = 0; I < Count; ++I)
            Values[I] = Import.ShownValue(Shown[static_cast<std::size_t>(I)].Name);
        Callback(Sender, Count, Row, Flag, Values);
        Import.GoNext();
    }
    Import.EndLook();
}

} // namespace kv
