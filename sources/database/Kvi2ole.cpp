#include "Kvi2ole.h"

#include <cstddef>
#include <cstdint>

#include "KvFormatSettings.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xaOpensForMapping", "xaSkipsToRowFirst"};

constexpr char MsgNotSpecified[] = "Property %s wasn't specified.";
constexpr int PreviewRows = 20;

int FieldNamed(const TAccessRecordset& Recordset, std::string_view Name)
{
    for (std::size_t I = 0; I < Recordset.Fields().size(); ++I)
        if (Recordset.Fields()[I].Name == Name)
            return static_cast<int>(I);
    return -1;
}

} // namespace

TKvImportFromAccess::TKvImportFromAccess(TComponent* Owner)
    : TKvImportFromFile(Owner, teAccess, Extension()) {}

TPublishedProperties TKvImportFromAccess::PublishedProperties() const
{
    using T = TKvImportFromAccess;
    return PublishAfter(TKvImportFromFile::PublishedProperties(),
                        {Publish("TableName", &T::TableName),
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
    const bool Opens = Extensions.Contains(xaOpensForMapping);
    if (Opens)
        Session.Open(TableName, SourceFileName);
    else if (!Session.Holds(TableName, SourceFileName)) // a failed run may have left it open
        throw Exception(SourceFileName + ": table " + TableName +
                        " is not open yet, so that its fields are not known; mappings are needed");
    for (int I = 0; I < GetDataSet()->FieldCount(); ++I) {
        const auto& FieldName = GetDataSet()->Fields(I).FieldName();
        for (const auto& Field : Session.Recordset()->Fields())
            if (Opens ? SameText(Field.Name, FieldName) : Field.Name == FieldName)
                Mappings().Add(FieldName + "=" + Field.Name);
    }
    if (Opens)
        Session.Close(true);
    if (Mappings().IsEmpty())
        throw Exception(SourceFileName + ": no field of table " + TableName +
                        " has the name of a field of the destination");
}

void TKvImportFromAccess::BeforeImport()
{
    Columns.Clear();
    Session.Open(TableName, SourceFileName);
}

void TKvImportFromAccess::AfterImport()
{
    Session.Close(true);
}

void TKvImportFromAccess::GoFirst()
{
    CurrentRow = 0;
    auto& Recordset = *Session.Recordset();
    Recordset.MoveFirst();
    if (Extensions.Contains(xaSkipsToRowFirst))
        for (int Number = 1; Number < RowFirst && !Recordset.Eof(); ++Number)
            Recordset.MoveNext();
}

/// Records count from the table's first.
TKvISourcePosition TKvImportFromAccess::SourcePosition() const
{
    const int Skipped = Extensions.Contains(xaSkipsToRowFirst) && RowFirst > 1 ? RowFirst - 1 : 0;
    return {.Unit = PositionUnit(),
            .Number = std::int64_t{Skipped} + (IsLooking() ? CurrentRow + 1 : Statistic.TotalImported)};
}

void TKvImportFromAccess::GoNext()
{
    ++CurrentRow;
    Session.Recordset()->MoveNext();
}

bool TKvImportFromAccess::NeedMore()
{
    const auto* const Recordset = Session.Recordset();
    return Recordset && !Recordset->Eof() && WantsMoreThan(CurrentRow);
}

int TKvImportFromAccess::GetTotalCount()
{
    return Session.Recordset() ? Session.Recordset()->RecordCount() : TKvImportFromFile::GetTotalCount();
}

TVariant TKvImportFromAccess::GetFieldValue(const TVariant& Source)
{
    const int Field = Columns.Find(
        Source, [this](const std::string& Each) { return FieldNamed(*Session.Recordset(), Each); });
    return Field >= 0 ? Session.Value(Field, DataFormats.DecimalSeparator)
                      : TKvImportFromFile::GetFieldValue(Source);
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
                       const TPreviewCallback& Callback)
{
    TKvAccessSession Session;
    Session.Open(TableName, FileName);
    FieldNames.clear();
    if (!Session.Recordset())
        return;
    auto& Recordset = *Session.Recordset();
    for (const auto& Field : Recordset.Fields()) {
        if (!FieldNames.empty() && !FieldNames.ends_with(';'))
            FieldNames += ';';
        FieldNames += Field.Name;
        if (Columns)
            Columns->Add(Field.Name);
    }
    const auto Count = static_cast<int>(Recordset.Fields().size());
    Recordset.MoveFirst();
    for (int Row = 1; Row <= PreviewRows && !Recordset.Eof(); ++Row) {
        auto Values = TVariant::Array(0, Count - 1);
        for (int I = 0; I < Count; ++I)
            Values[I] = Session.Value(I, FormatSettings().DecimalSeparator);
        Callback(Sender, Count, Row, Flag, Values);
        Recordset.MoveNext();
    }
    Session.Close(true);
}

} // namespace kv
