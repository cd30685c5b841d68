#include "KvJobFile.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "KvDisplayText.h"
#include "KvIniFile.h"
#include "KvJobFormats.h"
#include "KvNumberText.h"
#include "KvProperties.h"
#include "KvSourceFactory.h"
#include "KvText.h"
#include "KviTableType.h"

namespace kv {

namespace {

constexpr char Common[] = "Common", Mappings[] = "Mappings", Section[] = "Job";

std::string TitleKey(std::size_t Line)
{
    return "Title" + std::to_string(Line);
}

std::string LineKey(std::size_t Line)
{
    return "Line" + std::to_string(Line);
}

/// The title of mapping `Line`; none where the mappings were changed since.
std::string ReadTitle(const TIniFile& File, std::size_t Line, const std::string& Mapping)
{
    const bool IsSame = File.ReadString(Section, LineKey(Line), {}) == Mapping;
    return IsSame ? File.ReadString(Section, TitleKey(Line), {}) : std::string();
}

void CheckMappings(const TIniFile& File, int Count)
{
    for (int I = 0; I < Count; ++I)
        if (const auto Key = "Map" + std::to_string(I); !File.HasKey(Mappings, Key))
            throw Exception(File.FileName() + ": " + Key + " is missing, although there should be " +
                            std::to_string(Count) + " mappings");
}

std::optional<std::string> ReadText(const TIniFile& File, const char* Key)
{
    if (!File.HasKey(Section, Key))
        return {};
    return File.ReadString(Section, Key, {});
}

template <class T> void Take(std::optional<T>& Target, const std::optional<T>& Value)
{
    if (!Target)
        Target = Value;
}

void Take(std::string& Target, const std::string& Value)
{
    if (Target.empty())
        Target = Value;
}

/// Writes what is not empty.
void WriteText(TIniFile& File, const std::string& Key, const std::string& Value)
{
    if (!Value.empty())
        File.WriteString(Section, Key, FromDisplay(Value));
}

void WriteText(TIniFile& File, const std::string& Key, const std::optional<std::string>& Value)
{
    WriteText(File, Key, Value.value_or(std::string()));
}

std::string NumberText(std::int64_t Value)
{
    return Value == 0 ? std::string() : std::to_string(Value);
}

bool IsBoolean(const TKvImportBaseComponent& Import, std::string_view Property)
{
    const auto Properties = Import.PublishedProperties();
    const auto* const Found = FindProperty(Properties, Property);
    return Found && Found->Get(Import).Boolean();
}

void CheckTarget(const TIniFile& File)
{
    if (!File.Text().empty() && !File.HasSection(Common))
        throw Exception(File.FileName() + " is there and is no import specification; it is left as it is");
}

/// The title by which the column of a line was found, if it was.
std::string TitleOf(const TJobSource& Source, const TJobPlan& Plan, const std::string& Line)
{
    const auto Pair = SplitMapLine(Line);
    for (const auto& Fate : Plan.Columns)
        if (Fate.Fate == jcMapped && !Fate.Field.empty() && Fate.Column.Name == Pair.Column)
            return Source.HasTitles() ? Fate.Column.Title : std::string();
    return {};
}

} // namespace

// Loading.

TJobFile::TJobFile(const std::string& GivenName) : FFileName(GivenName)
{
    const TIniFile File(FFileName);
    FImport = AsFileImport(LoadImport(File));
    FTableType = *TableTypeOfName(File.ReadString(Common, "TableType", {}));
    FName = File.ReadString(Common, "Specification", {});
    FApplication = File.ReadString(Common, "App", {});
    FIsFixed = FTableType == teText && IsBoolean(*FImport, "Fixed");
    const auto& Mapped = FImport->Mappings();
    CheckMappings(File, Mapped.Count());
    for (int I = 0; I < Mapped.Count(); ++I)
        if (!IsBlank(Mapped.NameAt(I)) && !IsBlank(Mapped.ValueAt(I))) {
            Lines.push_back(Mapped[I]);
            Titles.push_back(ReadTitle(File, static_cast<std::size_t>(I), Mapped[I]));
        }
    ReadJob(File);
}

TJobFile::~TJobFile() = default;

std::unique_ptr<TKvImportFromFile> TJobFile::TakeComponent()
{
    return std::move(FImport);
}

/// An older file does not say where its header is. A title may stand above, but hardly one line of it;
/// columns that find their fields by themselves have their names in row 1.
void TJobFile::ReadJob(const TIniFile& File)
{
    const int RowFirst = FImport->RowFirst;
    const bool HasUsualHeader = RowFirst == 2 || (RowFirst > 2 && MapsItself());
    FHeaderRow = File.ReadInteger(Section, "HeaderRow", HasUsualHeader ? 1 : 0);
    auto& Formats = Job.Formats;
    Formats.BooleanTrue = ReadText(File, "BooleanTrue");
    Formats.BooleanFalse = ReadText(File, "BooleanFalse");
    Formats.CodePage = File.ReadString(Section, "CodePage", {});
    Formats.OemCodePage = File.ReadString(Section, "OemCodePage", {});
    Formats.LegacyCodePage = File.ReadString(Section, "LegacyCodePage", {});
    Formats.CheckThousands = !File.ReadBool(Section, "AnyThousands", false);
    Job.Destination.Url = File.ReadString(Section, "Destination", {});
    Job.Destination.Table = File.ReadString(Section, "Table", {});
    Job.Run.Batch = File.ReadInteger(Section, "Batch", 0);
    if (File.HasKey(Section, "StopAfter"))
        Job.Run.StopAfter = File.ReadInteger(Section, "StopAfter", 0);
    if (const auto Share = ReadText(File, "StopShare"))
        Job.Run.StopShare = TextToFloat(*Share);
}

std::vector<std::string> TJobFile::Keys() const
{
    return SplitNames(FImport->DatasetKeys, ';');
}

// What it says.

void TJobFile::TakeCodePages(TJobFormats& Formats) const
{
    Take(Formats.CodePage, Job.Formats.CodePage);
    Take(Formats.OemCodePage, Job.Formats.OemCodePage);
    Take(Formats.LegacyCodePage, Job.Formats.LegacyCodePage);
}

void TJobFile::Complete(TJobSettings& Settings) const
{
    TakeCodePages(Settings.Formats);
    UseCodePages(Settings.Formats);                 // the names in the file are in them
    if (Settings.Source.FileName.empty())
        Settings.Source.FileName = FindSource();
    auto& Plan = Settings.Plan;
    Plan.Mapping = jmByLines;
    Plan.Lines.clear();
    for (const auto& Line : Lines)
        Plan.Lines.push_back(ToDisplay(Line));
    if (Plan.Keys.empty() && NeedsKeys(Plan.Mode))
        for (const auto& Key : Keys())
            Plan.Keys.push_back(ToDisplay(Key));
    TakeFormats(FImport->DataFormats, Settings.Formats);
    Take(Settings.Formats.BooleanTrue, Job.Formats.BooleanTrue);
    Take(Settings.Formats.BooleanFalse, Job.Formats.BooleanFalse);
    Settings.Formats.CheckThousands = Settings.Formats.CheckThousands && Job.Formats.CheckThousands;
    if (Settings.Destination.Url.empty())
        Settings.Destination.Url = FindDestination();
    Take(Settings.Destination.Table, ToDisplay(Job.Destination.Table));
    if (Settings.Run.Batch == 0)
        Settings.Run.Batch = Job.Run.Batch;
    Take(Settings.Run.StopAfter, Job.Run.StopAfter);
    Take(Settings.Run.StopShare, Job.Run.StopShare);
}

/// As the file names it, or beside the file.
std::string TJobFile::FindDestination() const
{
    const auto Named = ToDisplay(Job.Destination.Url);
    std::error_code Ignored;
    if (Named.empty() || std::filesystem::exists(Named, Ignored))
        return Named;
    const auto Beside = std::filesystem::path(FFileName).parent_path() / Named;
    return std::filesystem::exists(Beside, Ignored) ? Beside.string() : Named;
}

/// As the file names it in the current folder, or beside the file.
std::string TJobFile::FindSource() const
{
    const std::filesystem::path Named = FImport->SourceFileName;
    if (Named.empty())
        Refuse({.Kind = jfNoSource, .Name = FFileName});
    const auto Beside = std::filesystem::path(FFileName).parent_path() / Named;
    std::error_code Ignored;
    for (const auto& Place : {Named, Beside})
        if (std::filesystem::exists(Place, Ignored))
            return Place;
    Refuse({.Kind = jfSourceGone, .Name = FFileName, .Value = ToDisplay(Named.string())});
}

/// Of several columns with one title the first is meant, as where columns are found by name. What a source
/// may still have in later records is not gone.
std::vector<TJobFinding> TJobFile::FollowTitles(const TJobSource& Source,
                                                std::vector<std::string>& MapLines) const
{
    std::vector<TJobFinding> Result;
    if (!Source.HasTitles())
        return Result;
    for (std::size_t I = 0; I < Titles.size(); ++I) {
        const auto Pair = SplitMapLine(Lines[I]);
        const auto IsCalled = [&](const TKvISourceColumn& Each) { return SameText(Each.Title, Titles[I]); };
        const auto Found = std::ranges::find_if(Source.Columns(), IsCalled);
        const bool IsThere = Found != Source.Columns().end();
        if (Titles[I].empty() || (IsThere && Found->Name == Pair.Column))
            continue;
        if (IsThere) {
            MapLines[I] = ToDisplay(Pair.Field + "=" + Found->Name);
            Result.push_back({.Kind = jfColumnMoved,
                              .Name = ToDisplay(Found->Name),
                              .Value = ToDisplay(Titles[I]),
                              .Was = ToDisplay(Pair.Column)});
        }
        else if (Source.HeaderRow() > 0 || Source.ColumnNamed(ToDisplay(Pair.Column)).Kind != snMissing)
            Refuse({.Kind = jfColumnGone,
                    .Name = Source.Title(),
                    .Value = ToDisplay(Titles[I]),
                    .Was = ToDisplay(Pair.Field),
                    .Unit = Source.Unit(),
                    .Number = Source.HeaderRow()});
    }
    return Result;
}

// Saving.

void CheckJobFile(const std::string& FileName)
{
    CheckTarget(TIniFile(FileName, ioOpenOrCreate));
}

void SaveJob(const std::string& FileName, const std::string& Name, TJobSource& Source, const TJobPlan& Plan,
             const TJobSettings& Settings)
{
    TIniFile File(FileName, ioOpenOrCreate);
    CheckTarget(File);
    Source.Component().WriteSpecification(File, FromDisplay(Name));
    File.EraseSection(Section);
    WriteText(File, "HeaderRow", NumberText(Source.HeaderRow()));
    for (std::size_t I = 0; I < Plan.Lines.size(); ++I)
        if (const auto Title = TitleOf(Source, Plan, Plan.Lines[I]); !Title.empty()) {
            File.WriteString(Section, LineKey(I), Plan.Lines[I]);
            File.WriteString(Section, TitleKey(I), Title);
        }
    const auto& Formats = Settings.Formats;
    WriteText(File, "BooleanTrue", Formats.BooleanTrue);
    WriteText(File, "BooleanFalse", Formats.BooleanFalse);
    WriteText(File, "CodePage", Formats.CodePage);
    WriteText(File, "OemCodePage", Formats.OemCodePage);
    WriteText(File, "LegacyCodePage", Formats.LegacyCodePage);
    WriteText(File, "AnyThousands", NumberText(Formats.CheckThousands ? 0 : 1));
    WriteText(File, "Destination", Settings.Destination.Url);
    WriteText(File, "Table", Settings.Destination.Table);
    WriteText(File, "Batch", NumberText(Settings.Run.Batch));
    if (Settings.Run.StopAfter)
        WriteText(File, "StopAfter", std::to_string(*Settings.Run.StopAfter));
    if (Settings.Run.StopShare)
        WriteText(File, "StopShare", FloatToText(*Settings.Run.StopShare));
    File.UpdateFile();
}

} // namespace kv
