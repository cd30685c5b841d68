#include "KvJobSource.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <utility>

#include "KvCodePage.h"
#include "KvDisplayText.h"
#include "KvFile.h"
#include "KvJobFile.h"
#include "KvJobFormats.h"
#include "KvNumberText.h"
#include "KvProperties.h"
#include "KvText.h"
#include "KvTextFile.h"
#include "KvUtf8.h"
#include "Kvi2txt.h"
#include "KviSourceKinds.h"

namespace kv {

namespace {

constexpr char StandardInput[] = "-";

bool IsCsv(const std::string& FileName)
{
    return SameText(std::filesystem::path(FileName).extension().string(), ".CSV");
}

/// Text that is no UTF-8 although it should be becomes what it is taken for: fields are found by that.
std::string ReadableTitle(const std::string& Title)
{
    return AnsiIsUtf8() ? ToDisplay(Title) : Title;
}

TJobFinding FindingOf(const TKvISourceRemark& Remark)
{
    const auto Kind = [&Remark] {
        switch (Remark.Kind) {
        case srFewerValues:           return jfFewerValues;
        case srMoreValues:            return jfMoreValues;
        case srRowsBeyondExtent:      return jfRowsBeyond;
        case srColumnsBeyondExtent:   return jfColumnsBeyond;
        case srCellsBeyondLastColumn: return jfCellsBeyond;
        case srEmptyRows:             return jfEmptyRows;
        case srWideCharacters:        return jfWideCharacters;
        case srOldText:               return jfOldText;
        case srOlderWorkbook:         return jfOlderWorkbook;
        case srTextOfNoPage:          return jfForeignText;
        case srColumnLeftOut:         return jfColumnLeftOut;
        case srBytesLeftOut:          return jfBytesLeftOut;
        case srRowsBeyondCount:       return jfRowsBeyondCount;
        case srRowsMissing:           return jfRowsMissing;
        case srNumbersLost:           return jfNumbersLost;
        case srSeveralTables:         break;
        case srUnknownEncoding:       return jfUnknownEncoding;
        case srForeignText:           return jfForeignBytes;
        case srUndefinedBytes:        return jfUndefinedBytes;
        case srCutOff:                return jfCutOff;
        case srReplacedRecords:       return jfReplacedRecords;
        case srElementsLeftOut:       return jfElementsLeftOut;
        }
        return jfSeveralTables;
    };
    return {.Kind = Kind(),
            .Value = ToDisplay(Remark.Name),
            .Was = Remark.Kind == srForeignText ? LegacyCodePage() : ToDisplay(Remark.Reason),
            .Number = Remark.First,
            .Count = Remark.Count,
            .Limit = Remark.Limit,
            .Given = Remark.HasHeader};
}

/// True for what concerns a file whatever of it is read.
bool IsOfFile(TJobFindingKind Kind)
{
    return Kind == jfForeignText || Kind == jfColumnLeftOut || Kind == jfBytesLeftOut ||
           Kind == jfRowsBeyondCount || Kind == jfRowsMissing;
}

/// The number in the source of the row that names the columns; 0 for none.
int HeaderAmong(const TJobSample& Sample, const std::vector<std::string>& Wanted)
{
    const int Found = FindHeader(Sample, Wanted);
    return Found > 0 ? Sample[static_cast<std::size_t>(Found) - 1].Number : 0;
}

/// Figures below names tell a header from records: rows of texts alone may all be records.
bool HasFigures(const TJobSample& Sample)
{
    return std::ranges::any_of(Sample, &TJobSampleRow::HasFigures);
}

} // namespace

TJobSource::TJobSource(const TJobSourceSettings& Given, const std::function<bool()>& Continue)
    : Settings(Given)
{
    OpenFile(Continue);
    FindKind();
    CheckKind();
    Create(Continue);
}

TJobSource::TJobSource(TJobFile& Saved, const TJobSourceSettings& Given,
                       const std::function<bool()>& Continue)
    : Settings(Given), FComponent(Saved.TakeComponent()), FIsSaved(true), FMapsItself(Saved.MapsItself())
{
    OpenFile(Continue);
    const auto Named = ToDisplay(FComponent->SourceFileName);
    FFindings.push_back(
        {.Kind = jfSaved, .Name = FTitle, .Value = Saved.FileName(), .Was = Named, .Given = Named == FTitle});
    if (FMapsItself)
        FFindings.push_back({.Kind = jfMapsItself, .Name = FTitle});
    FKind = FindImportKind(Saved.TableType());
    FHeaderRow = Saved.HeaderRow();
    Settings.Layout.Fixed = Saved.IsFixed();
    FComponent->SourceFileName = FileName;
    SetUp(Continue);
}

TJobSource::~TJobSource() = default;

// Opening.

/// What can be read only once is kept, so that it can be looked at before it is imported.
void TJobSource::OpenFile(const std::function<bool()>& Continue)
{
    FTitle = ToDisplay(Settings.FileName);
    FileName = Settings.FileName;
    auto Path = FileName;
    if (FileName == StandardInput) {
        FTitle = FileName = "standard input";
        Path = TSpooledFile::StandardInput;
    }
    if (IsReadOnce(Path)) {
        Spooled.emplace(Path, Continue, Settings.MaxSpool);
        Path = Spooled->Name();
    }
    if (Path != FileName)
        Alias.emplace(FileName, Path);
}

/// Bytes that no other kind begins with tell more than the name of the file.
void TJobSource::FindKind()
{
    if (!Settings.Kind.empty()) {
        FKind = FindImportKind(Settings.Kind);
        if (!FKind)
            Refuse({.Kind = jfNoSuchKind, .Name = FTitle, .Value = Settings.Kind});
        return;
    }
    const auto Bytes = ReadFileBytes(FileName, KindBeginningSize);
    if (IsSqliteDatabase(Bytes.View()))
        Refuse({.Kind = jfIsDatabase, .Name = FTitle});
    FKind = KindOfSource(Settings.FileName, Bytes.View());
    if (!FKind)
        Refuse({.Kind = jfUnknownFile, .Name = FTitle});
}

void TJobSource::CheckKind() const
{
    const bool HasForeignPart = !Settings.Part.empty() && Settings.PartKind != Kind().Part;
    const bool HasForeignLayout = Settings.HasLayout && Kind().TableType != teText;
    if (HasForeignPart || HasForeignLayout)
        Refuse({.Kind = jfNoSuchSetting,
                .Name = FTitle,
                .Value = std::string(Kind().Name),
                .Was = HasForeignPart ? "Part" : "Layout"});
    if (Alias && !Kind().CanBePiped)
        Refuse({.Kind = jfNoPipe, .Name = FTitle, .Value = std::string(Kind().Name)});
    if (Settings.MsDos && !Kind().HasCodePage)
        Refuse({.Kind = jfNoOemText, .Name = FTitle, .Value = std::string(Kind().Name)});
}

void TJobSource::Create(const std::function<bool()>& Continue)
{
    FComponent = AsFileImport(Kind().Create(nullptr));
    FComponent->SourceFileName = FileName;
    FComponent->CharacterSet = Settings.MsDos ? csiASCII_MSDOS : csiANSI_WINDOWS;
    SetUp(Continue);
    if (!Settings.Classic)
        Kind().Extend(*FComponent);
}

void TJobSource::SetUp(const std::function<bool()>& Continue)
{
    Observer.Continue = Continue;
    FComponent->SetObserver(&Observer);
    if (Settings.Patience && Kind().TableType == teAccess)
        SetPropValue(*FComponent, "Patience", *Settings.Patience);
}

const std::vector<TKvISourcePart>& TJobSource::Parts()
{
    if (FParts.empty() && (Kind().Part == spSheet || Kind().Part == spTable))
        FParts = FComponent->SourceParts();
    return FParts;
}

// Looking.

void TJobSource::Look(const TJobLook& What)
{
    Rows = What.Rows;
    if (!FIsSaved) {
        SetLayout();
        SelectPart();
        CheckClassic();
    }
    SetRows(What);
    std::vector<std::string> Names, Titles;
    for (const auto& Line : Settings.Layout.Columns) {
        const auto Equal = Line.rfind('=');
        Titles.push_back(FromDisplay(Line.substr(0, Equal)));
        Names.push_back(Line.substr(Equal + 1));
    }
    if (auto* const Text = dynamic_cast<TKvImportFromText*>(FComponent.get()))
        Text->HeaderLine = FHeaderRow;
    LookAt(Names);
    for (std::size_t I = 0; I < Titles.size(); ++I)
        FView.Columns[I].Title = FColumns[I].Title = Titles[I];
    CheckText();
    CheckUtf8();
    for (auto& Remark : Remarks())
        if (IsOfFile(Remark.Kind))
            FFindings.push_back(std::move(Remark));
}

void TJobSource::LookAt(const std::vector<std::string>& Columns)
{
    FView = FComponent->Look({.Rows = Rows, .HeaderRow = FHeaderRow, .Columns = Columns});
    for (auto& Column : FView.Columns) {
        auto Title = ReadableTitle(Column.Title);
        HasLegacyTitle = HasLegacyTitle || Title != Column.Title;
        Column.Title = BareTitle(Title);
    }
    FColumns.assign(FView.Columns.begin(),
                    FView.Columns.begin() + static_cast<std::ptrdiff_t>(FView.Offered));
}

/// What is imported begins below the header, unless it is said where.
void TJobSource::SetRows(const TJobLook& What)
{
    auto& Import = *FComponent;
    const bool MayHaveHeader = !FIsSaved && Kind().Names == cnHeaderRow && !IsFixed();
    if (MayHaveHeader)
        FHeaderRow = FindHeaderRow(What);
    Import.RowFirst = Settings.RowFirst.value_or(FIsSaved ? Import.RowFirst : FHeaderRow + 1);
    Import.RowLast = Settings.RowLast.value_or(FIsSaved ? Import.RowLast : RowLastMax);
    if (Import.RowLast < Import.RowFirst)
        Refuse({.Kind = jfRowsOutOfOrder,
                .Name = FTitle,
                .Number = Import.RowFirst,
                .Count = Import.RowLast});
    if (FHeaderRow >= Import.RowFirst)
        FHeaderRow = 0;
    if (FoundDelimiter)
        FFindings.push_back({.Kind = jfDelimiter,
                             .Name = FTitle,
                             .Unit = Unit(),
                             .Number = FHeaderRow > 0 ? FHeaderRow : Import.RowFirst,
                             .Character = *FoundDelimiter});
    const bool IsPlain = FHeaderRow == Import.RowFirst - 1 &&
                         (Settings.RowFirst || (FHeaderRow == 1 && (What.FindTitles || What.ShowsTitles)));
    if (MayHaveHeader && FHeaderRow > 0 && !IsPlain)
        FFindings.push_back({.Kind = jfHeader,
                             .Name = FTitle,
                             .Unit = Unit(),
                             .Number = FHeaderRow,
                             .Given = Settings.RowFirst.has_value()});
}

/// It is looked for in the first rows, or right above the row with which the import shall begin. A header
/// that is needed may look like any row.
int TJobSource::FindHeaderRow(const TJobLook& What)
{
    const int First = Settings.RowFirst.value_or(0);
    if (First == 1 && What.FindTitles)
        Refuse({.Kind = jfNoHeaderLeft, .Name = FTitle, .Unit = Unit()});
    if (First == 1 || (IsClassic() && Kind().Part == spTableNumber)) // whose cells have no columns
        return 0;
    const auto Wanted = TitlesAmong(What.Wanted);
    if (First > 1 && HeaderAmong(Sample(First - 1), Wanted) == First - 1)
        return First - 1;
    const auto Beginning = Sample(1);
    const int Found = HeaderAmong(Beginning, Wanted);
    const bool IsNeeded = What.FindTitles || What.ShowsTitles || !Wanted.empty();
    if (Found > 0 && (First == 0 || Found < First) && (IsNeeded || HasFigures(Beginning)))
        return Found;
    return What.FindTitles ? std::max(First - 1, 1) : 0;
}

/// Those of mapping lines that are no names of columns by themselves.
std::vector<std::string> TJobSource::TitlesAmong(const std::vector<std::string>& Wanted) const
{
    std::vector<std::string> Titles;
    for (const auto& Name : Wanted)
        if (!SameText(FComponent->ResolveName(FromDisplay(Name), {}).Name, FromDisplay(Name)) ||
            FComponent->ResolveName(FromDisplay(Name), {}).Kind == snConstant)
            Titles.emplace_back(BareTitle(Name));
    return Titles;
}

/// The rows from `First` on, as they are cut now; none where the layout cannot be that of the file.
TJobSample TJobSource::Sample(int First)
{
    constexpr int SampleSize = 20;
    FComponent->RowFirst = First;
    FComponent->RowLast = std::min(First + SampleSize - 1, Settings.RowLast.value_or(RowLastMax));
    return SampleOf(FComponent->Look({.Rows = SampleSize}));
}

/// What the component does otherwise than was asked for.
void TJobSource::CheckClassic()
{
    if (!Settings.Classic)
        return;
    if (Kind().Part == spTableNumber)
        FFindings.push_back({.Kind = jfClassicCells, .Name = FTitle});
    if (Kind().ClassicRows == crNothing && (Settings.RowFirst || Settings.RowLast))
        FFindings.push_back({.Kind = jfClassicRows, .Name = FTitle});
    if (Kind().ClassicRows == crCount && Settings.RowFirst)
        FFindings.push_back({.Kind = jfClassicCount, .Name = FTitle});
}

void TJobSource::SetLayout()
{
    auto* const Text = dynamic_cast<TKvImportFromText*>(FComponent.get());
    if (!Text)
        return;
    const auto& Layout = Settings.Layout;
    Text->Fixed = Layout.Fixed;
    Text->SetFieldDelimiterCustom(Layout.Delimiter.value_or(Layout.Fixed               ? '\0'
                                                            : IsCsv(Settings.FileName) ? ','
                                                                                       : '\t'));
    Text->SetTextQualifierCustom(Layout.Qualifier);
    Text->SetRecordSeparatorCustom(Layout.RecordSeparator);
    if (!Layout.Delimiter && !Layout.Fixed)
        FindDelimiter(*Text);
}

/// The one by which most of the first lines have the same number of values. A value that is never closed
/// delimits nothing.
void TJobSource::FindDelimiter(TKvImportFromText& Text)
{
    const char Usual = Text.GetFieldDelimiterCustom();
    char Best = Usual;
    std::size_t Most = 0;
    for (const char Each : {Usual, ';', ',', '\t', '|'}) {
        Text.SetFieldDelimiterCustom(Each);
        std::size_t Fitting = 0;
        try {
            Fitting = RowsOfOneWidth(Sample(std::max(Settings.RowFirst.value_or(1) - 1, 1)));
        }
        catch (const Exception& Error) {
            if (Error.Facts.Rule != erFormat)
                throw;
        }
        if (Fitting > Most) {
            Most = Fitting;
            Best = Each;
        }
    }
    Text.SetFieldDelimiterCustom(Best);
    if (Best != Usual)
        FoundDelimiter = Best;
}

// Parts.

void TJobSource::SelectPart()
{
    switch (Kind().Part) {
    case spNone:        break;
    case spSheet:       return SelectSheet();
    case spTable:       return SelectTable();
    case spTableNumber: return SelectTableNumber();
    case spRowTag:
        if (!Settings.Part.empty())
            SetPropValue(*FComponent, "TableName", FromDisplay(Settings.Part));
        break;
    }
}

/// A number wins over a name of digits.
void TJobSource::SelectSheet()
{
    Parts();
    const auto& Sheet = Settings.Part;
    const auto IsNamed = [&Sheet](const TKvISourcePart& Each) {
        return SameText(ToDisplay(Each.Name), Sheet);
    };
    // A sheet that its program hides is imported only when it is named.
    auto Index = std::ranges::find(FParts, false, &TKvISourcePart::IsHidden) - FParts.begin();
    if (Index == std::ssize(FParts))
        Index = 0;
    if (const auto Number = TryTextToInt(Sheet); Number && *Number >= 1 && *Number <= std::ssize(FParts))
        Index = static_cast<std::ptrdiff_t>(*Number) - 1;
    else if (!Sheet.empty())
        Index = std::ranges::find_if(FParts, IsNamed) - FParts.begin();
    if (Index == std::ssize(FParts) && !FParts.empty())
        Refuse({.Kind = jfNoSuchSheet, .Name = FTitle, .Value = Sheet, .Names = TableNames()});
    if (FParts.empty())
        return;
    const auto& Part = FParts[static_cast<std::size_t>(Index)];
    FComponent->SelectPart(static_cast<int>(Index), Part);
    FPartNumber = static_cast<int>(Index) + 1;
    if (FParts.size() > 1)
        FFindings.push_back({.Kind = jfSheet,
                             .Name = FTitle,
                             .Value = ToDisplay(Part.Name),
                             .Number = Index + 1,
                             .Count = std::ssize(FParts),
                             .Given = !Sheet.empty()});
}

std::vector<std::string> TJobSource::TableNames() const
{
    std::vector<std::string> Names;
    for (const auto& Part : FParts)
        if (!Part.IsSystem)
            Names.push_back(ToDisplay(Part.Name));
    return Names;
}

/// Tables that the database keeps for itself are imported only by their name.
void TJobSource::SelectTable()
{
    Parts();
    const auto Names = TableNames();
    const bool IsOnly = Settings.Part.empty() && Names.size() == 1;
    if (Names.empty())
        Refuse({.Kind = jfNoTables, .Name = FTitle});
    if (Settings.Part.empty() && !IsOnly)
        Refuse({.Kind = jfPartMissing, .Name = FTitle, .Names = Names});
    const auto Wanted = IsOnly ? Names.front() : Settings.Part;
    const auto IsNamed = [&Wanted](const TKvISourcePart& Each) {
        return SameText(ToDisplay(Each.Name), Wanted);
    };
    const auto Found = std::ranges::find_if(FParts, IsNamed);
    if (Found == FParts.end())
        Refuse({.Kind = jfNoSuchTable, .Name = FTitle, .Value = Wanted, .Names = Names});
    FComponent->SelectPart(static_cast<int>(Found - FParts.begin()), *Found);
    if (IsOnly)
        FFindings.push_back({.Kind = jfOnlyTable, .Name = FTitle, .Value = Wanted});
}

void TJobSource::SelectTableNumber()
{
    if (Settings.Part.empty())
        return;
    FParts = FComponent->SourceParts();
    const auto Number = TryTextToInt(Settings.Part).value_or(0);
    if (Number < 1 || Number > std::ssize(FParts))
        Refuse({.Kind = jfNoSuchTableNumber,
                .Name = FTitle,
                .Value = Settings.Part,
                .Count = std::ssize(FParts)});
    FComponent->SelectPart(static_cast<int>(Number) - 1, FParts[static_cast<std::size_t>(Number) - 1]);
}

// What was seen.

/// Text of a file is UTF-8: what is none has not been converted, and is taken for the legacy code page.
void TJobSource::CheckText()
{
    if (Kind().TableType != teText || Settings.MsDos || !AnsiIsUtf8())
        return;
    const auto IsForeign = [](const TVariant& Value) {
        return Value.IsString() && !IsValidUtf8(Value.Text());
    };
    const auto Tell = [&](const std::string& Place) {
        FFindings.push_back({.Kind = jfLegacyText,
                             .Name = FTitle,
                             .Value = LegacyCodePage(),
                             .Was = OemCodePage(),
                             .Place = Place});
    };
    if (HasLegacyTitle)
        return Tell(Unit() + " " + std::to_string(FHeaderRow));
    for (const auto& Row : FView.Rows)
        for (const auto& Each : Row.Values)
            if (IsForeign(Each.Value))
                return Tell(Row.Position.Text());
}

std::vector<TJobFinding> TJobSource::Unreadable() const
{
    TJobFinding Found{.Kind = jfUnreadable, .Name = FTitle};
    for (const auto& Row : FView.Rows)
        for (const auto& Value : Row.Values)
            if (!Value.Error.empty() && ++Found.Count == 1)
                Found.Value = ToDisplay(Value.Error);
    return Found.Count > 0 ? std::vector{Found} : std::vector<TJobFinding>();
}

std::vector<TJobFinding> TJobSource::Remarks() const
{
    std::vector<TJobFinding> Result;
    for (const auto& Remark : FComponent->SourceRemarks()) {
        auto Found = FindingOf(Remark);
        Found.Name = FTitle;
        Found.Unit = Unit();
        if (Found.Kind == jfForeignText) {
            Found.Value = LegacyCodePage();
            Found.Was = OemCodePage();
            Found.Place = Unit() + " " + std::to_string(Found.Number);
        }
        const auto IsSame = [&Found](const TJobFinding& Told) {
            return Told.Kind == Found.Kind && Told.Value == Found.Value;
        };
        if (!IsOfFile(Found.Kind) || std::ranges::none_of(FFindings, IsSame))
            Result.push_back(std::move(Found));
    }
    return Result;
}

/// A text that is UTF-8 and read as something else: hardly any other text looks like UTF-8.
void TJobSource::CheckUtf8()
{
    constexpr std::size_t MaxBytes = std::size_t{1} << 20;
    constexpr std::size_t MaxCut = 3;               // bytes of a character that ends beyond them
    const bool IsMsDos = FComponent->CharacterSet == csiASCII_MSDOS;
    if (Kind().TableType != teText || (AnsiIsUtf8() && !IsMsDos))
        return;
    const auto Bytes = ReadFileBytes(FileName, MaxBytes);
    const auto Text = Bytes.View();
    const auto Ascii = AsciiSize(Text), Valid = ValidUtf8Size(Text);
    const bool HasMark = WithoutByteOrderMark(Text).size() < Text.size();
    if (HasMark || Ascii == Text.size() || Valid + MaxCut < Text.size() || Valid == Ascii)
        return;
    const auto Line = std::ranges::count(Text.substr(0, Ascii), '\n') + 1;
    FFindings.push_back({.Kind = jfUtf8Text,
                         .Name = FTitle,
                         .Value = IsMsDos ? OemCodePage() : AnsiCodePage(),
                         .Place = "line " + std::to_string(Line)});
}

TJobColumn TJobSource::ColumnNamed(const std::string& Name) const
{
    const auto Wanted = FromDisplay(Name);
    const auto Resolved = FComponent->ResolveName(Wanted, Columns());
    const bool IsName = Resolved.Kind == snColumn && SameText(Resolved.Name, Wanted);
    const auto IsCalled = [Title = BareTitle(Wanted)](const TKvISourceColumn& Each) {
        return !Each.Title.empty() && SameText(Each.Title, Title);
    };
    const auto Titled = std::ranges::find_if(Columns(), IsCalled);
    if (!FIsSaved && !IsName && Titled != Columns().end())
        return {.Column = *Titled, .Kind = snColumn, .ByTitle = true};
    CheckIsThere(Resolved, Name);
    const auto Found = std::ranges::find(Columns(), Resolved.Name, &TKvISourceColumn::Name);
    if (Found != Columns().end())
        return {.Column = *Found, .Kind = Resolved.Kind};
    return {.Column = {.Name = Resolved.Name, .Title = {}}, .Kind = Resolved.Kind};
}

/// Nobody means a constant by a column that is misspelt, nor the second value by "batch2".
void TJobSource::CheckIsThere(const TKvISourceName& Resolved, const std::string& Name) const
{
    const bool IsText = Kind().TableType == teText;
    const bool IsGuess = (Resolved.Kind == snConstant && Kind().TableType != teXML) ||
                         (IsText && !SameText(Resolved.Name, FromDisplay(Name)));
    if (Resolved.Kind == snNothing || (!FIsSaved && IsGuess))
        Refuse({.Kind = jfNoSuchColumn,
                .Name = FTitle,
                .Value = Name,
                .Was = std::string(Kind().Name),
                .Names = TitlesOf(Columns())});
    const bool IsSeen = !FView.Rows.empty() || FHeaderRow > 0;
    if (IsText && !IsFixed() && IsSeen && !FMapsItself && Resolved.Kind == snMissing &&
        std::ranges::count(FView.Columns, Resolved.Name, &TKvISourceColumn::Name) == 0)
        Refuse({.Kind = jfColumnMissing,
                .Name = FTitle,
                .Value = Name,
                .Unit = Unit(),
                .Number = FHeaderRow > 0 ? FHeaderRow : FComponent->RowFirst,
                .Count = std::ssize(Columns())});
}

bool TJobSource::CanBeNamed(const TKvISourceColumn& Column) const
{
    const std::string Name(Trim(Column.Name));
    if (Name == Column.Name)
        return true;
    const auto Resolved = FComponent->ResolveName(Name, Columns());
    return Resolved.Kind == snColumn && Resolved.Name == Column.Name;
}

TKvISourceColumn TJobSource::Constant(const std::string& Text) const
{
    const auto Value = FromDisplay(Text);
    const auto Resolved = FComponent->ResolveName(Value, Columns());
    const auto* const Lines = dynamic_cast<TKvImportFromText*>(FComponent.get());
    const bool IsTaken = Lines || Kind().TableType == teDBase || Kind().TableType == teParadox ||
                         Kind().TableType == teAccess;
    const bool IsWhole = !IsBlank(Value) && Trim(Value) == Value &&
                         !(Lines && Value.back() == Lines->GetFieldDelimiterCustom());
    if (!IsTaken || !IsWhole || Resolved.Kind != snConstant || Resolved.Name != Value)
        Refuse({.Kind = jfNoConstant, .Name = FTitle, .Value = Text, .Was = std::string(Kind().Name)});
    return {.Name = Value};
}

std::vector<std::string> TitlesOf(const std::vector<TKvISourceColumn>& Columns)
{
    std::vector<std::string> Titles;
    for (const auto& Column : Columns)
        Titles.push_back(ToDisplay(Column.Title.empty() ? Column.Name : Column.Title));
    return Titles;
}

std::unique_ptr<TJobSource> OpenSource(TJobFile* Saved, const TJobSettings& Settings,
                                       const std::function<bool()>& Continue)
{
    auto Source = Saved ? std::make_unique<TJobSource>(*Saved, Settings.Source, Continue)
                        : std::make_unique<TJobSource>(Settings.Source, Continue);
    SetFormats(Settings.Formats, Source->Component().DataFormats);
    if (!Settings.Formats.CodePage.empty() &&
        FindProperty(Source->Component().PublishedProperties(), "CodePage"))
        SetPropValue(Source->Component(), "CodePage", Settings.Formats.CodePage);
    TJobLook What{.FindTitles = Settings.Plan.Mapping == jmByName};
    for (const auto& Line : Settings.Plan.Lines)
        What.Wanted.emplace_back(Trim(Line.substr(Line.rfind('=') + 1)));
    Source->Look(What);
    return Source;
}

std::string SourceText(const TVariant& Value)
{
    return ToDisplay(Value.ToText());
}

} // namespace kv
