#include "Kvi2bde.h"

#include <algorithm>

#include "KvFormatSettings.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xbOpensForMapping", "xbKeepsToRows"};

constexpr std::size_t TruncatedSize = 10;           // to which mappings cut names of dBase tables
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

} // namespace

TKvImportFromBDE::TKvImportFromBDE(TComponent* Owner, TTableTypeImport Kind)
    : TKvImportFromFile(Owner, Kind, Extension())
{
}

TPublishedProperties TKvImportFromBDE::PublishedProperties() const
{
    using T = TKvImportFromBDE;
    return PublishAfter(TKvImportFromFile::PublishedProperties(),
                        {Publish("TableType", &T::TableType, TableTypeNames),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

TTableType TKvImportFromBDE::TypeOfTable() const
{
    return TableType == ttDefault && TKvImportFromFile::TableType == teDBase ? ttDBase : TableType;
}

void TKvImportFromBDE::DetectAutoMapping()
{
    PrepareTable();
    if (Extensions.Contains(xbOpensForMapping))
        Table->Open();
    MapFields([this](const TField& Field) {
        return Table->FindField(Field.FieldName()) ? Field.FieldName() : std::string();
    });
    AfterImport();
}

void TKvImportFromBDE::PrepareTable()
{
    if (Table)
        Table->Close();
    else
        Table = std::make_unique<TTable>();
    Columns.Clear();
    Table->TableName = SourceFileName;
    Table->TableType = TypeOfTable();
    Table->Transliterate = CharacterSet != csiASCII_MSDOS;
    if (const auto* const SessionName = SessionOf(GetDataSet()))
        Table->SessionName = *SessionName;
}

void TKvImportFromBDE::BeforeImport()
{
    PrepareTable();
    if (!Mappings().IsEmpty())
        return;
    throw Exception(FormatText(Extensions.Contains(xbOpensForMapping)
                                   ? "%s: no field has the name of a field of the destination; mappings are needed"
                                   : "%s: a table tells its fields only once it is open; mappings are needed",
                               {SourceFileName}));
}

void TKvImportFromBDE::GoFirst()
{
    Table->Open();
    Table->First();
    if (Extensions.Contains(xbKeepsToRows))
        while (!Table->Eof() && Table->RecNo() < RowFirst)
            Table->Next();
}

bool TKvImportFromBDE::NeedMore()
{
    return !Table->Eof() && (!Extensions.Contains(xbKeepsToRows) || Table->RecNo() <= RowLast);
}

TKvISourcePosition TKvImportFromBDE::SourcePosition() const
{
    if (!Table || !Table->Active() || Table->Eof())
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
    const auto* const Field = Columns.Find(Source, [this](const std::string& Each) { return FindColumn(Each); });
    if (!Field)
        return TKvImportFromFile::GetFieldValue(Source);
    auto Value = Field->PeekValue();
    if (Value.IsString() && IsNumericField(Field->DataType()))
        return WithSeparator(Value, DataFormats.DecimalSeparator);
    return Value;
}

/// A name that mappings cut to its first characters means the field that begins so: tables of dBase 7 have
/// longer names than those for which the rule was made.
TField* TKvImportFromBDE::FindColumn(const std::string& Column) const
{
    auto* Found = Table->FindField(Column);
    if (Found || !FieldIsTruncated() || Column.size() != TruncatedSize)
        return Found;
    for (int I = 0; I < Table->FieldCount(); ++I) {
        auto& Field = Table->Fields(I);
        if (!SameText(std::string_view(Field.FieldName()).substr(0, TruncatedSize), Column))
            continue;
        if (Found)
            throw Exception(FormatText("%s: both field '%s' and field '%s' begin with '%s'",
                                       {SourceFileName, Found->FieldName(), Field.FieldName(), Column}));
        Found = &Field;
    }
    return Found;
}

// Routines without a component.

TImportFormatTypes GetAvailableImportFormats()
{
    return {teParadox, teDBase, teText, teHTML, teXLS, teWKS, teQuattro, teXML, teAccess};
}

void LoadBDEPreview(TPersistent* Sender, const std::string& FileName, std::string& FieldNames, bool IsDBase,
                    const TDataSet* DataSet, bool Flag, TStrings* Columns, const TPreviewCallback& Callback)
{
    TTable Table;
    Table.TableName = FileName;
    Table.TableType = IsDBase ? ttDBase : ttParadox;
    const auto* const SessionName = SessionOf(DataSet);
    Table.SessionName = SessionName ? *SessionName : Session().SessionName;
    Table.Open();
    if (FieldNames.empty())
        FieldNames = ListFields(Table, Columns);
    const auto ColumnCount = 1 + static_cast<int>(std::ranges::count(FieldNames, ';'));
    for (int Row = 1; Row < PreviewEnd && !Table.Eof(); ++Row) {
        Callback(Sender, ColumnCount, Row, Flag, Table.FieldValues(FieldNames));
        Table.Next();
    }
}

} // namespace kv
