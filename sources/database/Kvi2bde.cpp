#include "Kvi2bde.h"

#include <algorithm>

#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvPublish.h"
#include "KvTable.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xbOpensForMapping", "xbKeepsToRows"};

constexpr int PollRecords = 4096;                   // between two looks at the Cancel button
constexpr int PreviewEnd = 20;                      // the first record, from 1, that is not shown

/// That of the destination, or none when it is no dataset of the table engine.
const std::string* SessionOf(const TDataSet* DataSet)
{
    const auto* const Destination = dynamic_cast<const TDBDataSet*>(DataSet);
    return Destination ? &Destination->SessionName : nullptr;
}

/// Digits of a decimal number that the run is about to read under its own settings.
TVariant WithSeparator(const TVariant& Digits, char Separator)
{
    auto Text = Digits.ToText();
    std::ranges::replace(Text, FormatSettings().DecimalSeparator, Separator);
    return Text;
}

std::vector<TKvISourceRemark> RemarksOf(const TTable& Table)
{
    const auto KindOf = [](TKvTableRemarkKind Kind) {
        switch (Kind) {
        case trNoCodePage:     return srTextOfNoPage;
        case trFieldLeftOut:   return srColumnLeftOut;
        case trBytesLeftOut:   return srBytesLeftOut;
        case trRecordsBeyond:  return srRowsBeyondCount;
        case trRecordsMissing: return srRowsMissing;
        case trNumbersLost:    break;
        }
        return srNumbersLost;
    };
    std::vector<TKvISourceRemark> Result;
    for (const auto& Remark : Table.Remarks())
        Result.push_back({.Kind = KindOf(Remark.Kind),
                          .Count = Remark.Count,
                          .First = Remark.First,
                          .Limit = Remark.Limit,
                          .Name = Remark.Name,
                          .Reason = Remark.Reason});
    return Result;
}

std::string ListFields(const TDataSet& Table, TStrings* Columns)
{
    std::string List;
    if (Columns)
        Columns->Clear();
    for (int I = 0; I < Table.FieldCount(); ++I) {
        const auto& Name = Table.Fields(I).FieldName();
        if (Columns)
            Columns->Add(Name);
        List += (I > 0 ? ";" : "") + Name;
    }
    return List;
}

/// The import with what a preview needs of a look.
struct TPreviewOfTable final : TKvImportFromBDE
{
    using TKvImportFromBDE::GoFirst;
    using TKvImportFromBDE::GoNext;
    using TKvImportFromBDE::NeedMore;
    using TKvImportFromBDE::OpenForLook;
    using TKvImportFromBDE::SourceTable;
};

} // namespace

TKvImportFromBDE::TKvImportFromBDE(TComponent* Owner, TTableTypeImport Kind)
    : TKvImportFromFile(Owner, Kind, Extension())
{
}

TKvImportFromBDE::~TKvImportFromBDE() = default;

TPublishedProperties TKvImportFromBDE::PublishedProperties() const
{
    using T = TKvImportFromBDE;
    return PublishAfter(TKvImportFromFile::PublishedProperties(),
                        {AsPlace(Publish("TableType", &T::TableType, TableTypeNames)),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

TTableType TKvImportFromBDE::TypeOfTable() const
{
    return TableType == ttDefault && TKvImportFromFile::TableType == teDBase ? ttDBase : TableType;
}

void TKvImportFromBDE::DetectAutoMapping()
{
    PrepareTable(GetDataSet());
    if (Extensions.Contains(xbOpensForMapping))
        Table->Open();
    MapFields([this](const TField& Field) {
        return Table->FindField(Field.FieldName()) ? Field.FieldName() : std::string();
    });
    AfterImport();
}

void TKvImportFromBDE::PrepareTable(const TDataSet* Destination)
{
    if (Table)
        Table->Close();
    else
        Table = std::make_unique<TTable>();
    Columns.Clear();
    Remarks.clear();
    IsForLook = GivenUp = false;
    Table->TableName = SourceFileName;
    Table->TableType = TypeOfTable();
    Table->Transliterate = TranslatesText();
    if (const auto* const SessionName = SessionOf(Destination))
        Table->SessionName = *SessionName;
}

// The run.

void TKvImportFromBDE::BeforeImport()
{
    PrepareTable(GetDataSet());
    if (!Mappings().IsEmpty())
        return;
    throw Exception(
        FormatText(Extensions.Contains(xbOpensForMapping)
                       ? "%s: no field has the name of a field of the destination; mappings are needed"
                       : "%s: a table tells its fields only once it is open; mappings are needed",
                   {SourceFileName}),
        {.FileName = SourceFileName});
}

void TKvImportFromBDE::AfterImport()
{
    CloseTable();
}

/// What was odd about it can still be asked for.
void TKvImportFromBDE::CloseTable()
{
    if (Table && Table->Active())
        Remarks = RemarksOf(*Table);
    Table.reset();
}

std::vector<TKvISourceRemark> TKvImportFromBDE::SourceRemarks() const
{
    return Table && Table->Active() ? RemarksOf(*Table) : Remarks;
}

void TKvImportFromBDE::GoFirst()
{
    const bool KeepsToRows = Extensions.Contains(xbKeepsToRows);
    Table->LastRecord = KeepsToRows ? RowLast : 0;  // what is wrong with those behind it does not matter
    Table->Open();
    Table->First();
    if (!KeepsToRows)
        return;
    for (int Skipped = 1; !Table->Eof() && Table->RecNo() < RowFirst && !GivenUp; ++Skipped) {
        Table->Next();
        GivenUp = Skipped % PollRecords == 0 && !KeepsRunning();
    }
}

void TKvImportFromBDE::GoNext()
{
    Table->Next();
}

bool TKvImportFromBDE::NeedMore()
{
    return !GivenUp && !Table->Eof();
}

int TKvImportFromBDE::GetTotalCount()
{
    return Table->RecordCount();
}

bool TKvImportFromBDE::HasRecord() const
{
    return Table && Table->Active() && !Table->Eof();
}

TKvISourcePosition TKvImportFromBDE::SourcePosition() const
{
    if (!HasRecord())
        return TKvImportFromFile::SourcePosition();
    return {.Unit = PositionUnit(), .Number = Table->RecNo()};
}

bool TKvImportFromBDE::LoadRecord()
{
    try {
        return TKvImportFromFile::LoadRecord();
    }
    catch (const EFormatError& Error) {             // a value that the table cannot read
        RecordFailed(Error);
        return false;
    }
}

TVariant TKvImportFromBDE::GetFieldValue(const TVariant& Source)
{
    const auto* const Field =
        Columns.Find(Source, [this](const std::string& Each) { return FindColumn(Each); });
    if (!Field)
        return TKvImportFromFile::GetFieldValue(Source);
    auto Value = Field->PeekValue();
    if (Value.IsString() && IsNumericField(Field->DataType()))
        return WithSeparator(Value, DataFormats.DecimalSeparator);
    return Value;
}

TVariant TKvImportFromBDE::SourceRecord()
{
    if (!HasRecord())
        return Null;
    auto Values = TVariant::Array(0, Table->FieldCount() - 1);
    for (int I = 0; I < Table->FieldCount(); ++I) {
        try {
            Values[I] = Table->Fields(I).Value();
        }
        catch (const EFormatError&) {
            Values[I] = Null;
        }
    }
    return Values;
}

// Columns.

/// Where mappings cut names to their first characters, `Column` means fields that begin so: tables of dBase 7
/// have longer names than those for which that rule was made.
bool TKvImportFromBDE::IsCutFrom(std::string_view FieldName, std::string_view Column) const
{
    return FieldIsTruncated() && SameText(ShortName(FieldName), Column);
}

/// The field of that name, else those that it is cut from: none, one or two of them.
std::pair<TField*, TField*> TKvImportFromBDE::FieldsCalled(std::string_view Column) const
{
    std::pair<TField*, TField*> Found{Table->FindField(Column), nullptr};
    if (Found.first)
        return Found;
    for (int I = 0; I < Table->FieldCount() && !Found.second; ++I)
        if (auto& Field = Table->Fields(I); IsCutFrom(Field.FieldName(), Column))
            (Found.first ? Found.second : Found.first) = &Field;
    return Found;
}

TField* TKvImportFromBDE::FindColumn(const std::string& Column) const
{
    const auto [Field, Other] = FieldsCalled(Column);
    if (Other)
        throw Exception(FormatText("%s: both field '%s' and field '%s' begin with '%s'",
                                   {SourceFileName, Field->FieldName(), Other->FieldName(), Column}),
                        {.FileName = SourceFileName, .Field = Column});
    return Field;
}

TKvISourceName TKvImportFromBDE::ResolveName(const std::string& Wanted,
                                             const std::vector<TKvISourceColumn>& Shown) const
{
    auto Found = TKvImportFromFile::ResolveName(Wanted, Shown);
    const auto Column = SourceName(Wanted);
    const auto IsMeant = [&](const auto& Each) { return IsCutFrom(Each.Name, Column); };
    if (const auto Cut = std::ranges::find_if(Shown, IsMeant); Found.Kind != snColumn && Cut != Shown.end())
        return {.Kind = snColumn, .Name = Cut->Name};
    return Found;
}

// A look.

bool TKvImportFromBDE::IsKept() const
{
    return IsForLook && Table->TableName == SourceFileName && Table->TableType == TypeOfTable() &&
           Table->Transliterate == TranslatesText();
}

void TKvImportFromBDE::OpenForLook(const TDataSet* Destination)
{
    Columns.Clear();
    GivenUp = false;
    if (IsKept())
        return;
    PrepareTable(Destination);
    Table->Open();
    IsForLook = true;
}

void TKvImportFromBDE::BeforeLook(const TKvISourceLook&)
{
    OpenForLook(GetDataSet());
}

std::vector<TKvISourceColumn> TKvImportFromBDE::SourceColumns(int)
{
    std::vector<TKvISourceColumn> Result;
    for (int I = 0; I < Table->FieldCount(); ++I) {
        const auto& Field = Table->Fields(I);
        Result.push_back({.Name = Field.FieldName(),
                          .Title = TitleText(Field.FieldName()),
                          .DataType = Field.DataType(),
                          .Size = Field.Size()});
    }
    return Result;
}

void TKvImportFromBDE::AfterLook()
{
    if (!IsForLook)
        CloseTable();
}

void TKvImportFromBDE::EndLook()
{
    if (std::exchange(IsForLook, false))
        CloseTable();
}

// Routines without a component.

TImportFormatTypes GetAvailableImportFormats()
{
    return {teParadox, teDBase, teText, teHTML, teXLS, teWKS, teQuattro, teXML, teAccess};
}

void LoadBDEPreview(TPersistent* Sender, const std::string& FileName, std::string& FieldNames, bool IsDBase,
                    const TDataSet* DataSet, bool Flag, TStrings* Columns, const TPreviewCallback& Callback,
                    TKvITableExtensions Extensions)
{
    TPreviewOfTable Import;
    Import.AnimatedStatus = false;
    Import.SourceFileName = FileName;
    Import.TableType = IsDBase ? ttDBase : ttParadox;
    Import.Extensions = Extensions;
    Import.OpenForLook(DataSet);
    if (FieldNames.empty())
        FieldNames = ListFields(*Import.SourceTable(), Columns);
    const auto ColumnCount = 1 + static_cast<int>(std::ranges::count(FieldNames, ';'));
    Import.GoFirst();
    for (int Row = 1; Row < PreviewEnd && Import.NeedMore(); ++Row) {
        Callback(Sender, ColumnCount, Row, Flag, Import.SourceTable()->FieldValues(FieldNames));
        Import.GoNext();
    }
}

} // namespace kv
