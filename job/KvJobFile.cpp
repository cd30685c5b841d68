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
#include "KviOwnSettings.h"
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

/// The title by which a column was found, if it was.
std::string TitleOf(const TJobSource& Source, const TJobColumnFate& Fate)
{
    const bool IsNamed = Fate.ByTitle || Source.Kind().Names == cnSource;
    return Fate.Fate == jcMapped && IsNamed ? Fate.Column.Title : std::string();
}

/// How the saved import `FileName` names another file: from its own folder, whatever folder is current.
std::string NameFrom(const std::string& FileName, const std::string& Other)
{
    namespace fs = std::filesystem;
    if (Other.empty() || fs::path(Other).is_absolute() || Other.find(':') != Other.npos)
        return Other;
    std::error_code Failed;
    const auto Folder = fs::absolute(FileName, Failed).parent_path();
    const auto Name = Failed ? fs::path() : fs::relative(Other, Folder, Failed);
    return Failed || Name.empty() ? fs::absolute(Other, Failed).string() : Name.string();
}

/// Where that other file lies; as it was named where it is neither there nor in the current folder.
std::string FindFrom(const std::string& FileName, const std::string& Named)
{
    std::error_code Ignored;
    const auto Beside = std::filesystem::path(FileName).parent_path() / Named; // Named itself when absolute
    return std::filesystem::exists(Beside, Ignored) ? Beside.string() : Named;
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
        if (const auto [Field, Column] = TKvImportBaseComponent::SplitMapping(Mapped[I], nullptr);
            !Field.empty() && !Column.empty()) {
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
    Job.Destination.ForeignKeys = !File.ReadBool(Section, "NoForeignKeys", false);
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
        Settings.Destination.Url = FindFrom(FFileName, ToDisplay(Job.Destination.Url));
    Take(Settings.Destination.Table, ToDisplay(Job.Destination.Table));
    Settings.Destination.ForeignKeys = Settings.Destination.ForeignKeys && Job.Destination.ForeignKeys;
    if (Settings.Run.Batch == 0)
        Settings.Run.Batch = Job.Run.Batch;
    Take(Settings.Run.StopAfter, Job.Run.StopAfter);
    Take(Settings.Run.StopShare, Job.Run.StopShare);
}

/// What comes from elsewhere may name no device and no pipe: only a user does that.
std::string TJobFile::FindSource() const
{
    if (FImport->SourceFileName.empty())
        Refuse({.Kind = jfNoSource, .Name = FFileName});
    const auto Found = FindFrom(FFileName, FImport->SourceFileName);
    std::error_code Ignored;
    const bool IsThere = std::filesystem::exists(Found, Ignored);
    if (!IsThere || !std::filesystem::is_regular_file(Found, Ignored))
        Refuse({.Kind = IsThere ? jfSourceNoFile : jfSourceGone,
                .Name = FFileName,
                .Value = ToDisplay(FImport->SourceFileName)});
    return Found;
}

/// Of several columns with one title the first is meant, as where columns are found by name. What a source
/// may still have in later records is not gone.
std::vector<TJobFinding> TJobFile::FollowTitles(const TJobSource& Source, const TDataSet& Destination,
                                                std::vector<std::string>& MapLines) const
{
    std::vector<TJobFinding> Result;
    if (!Source.HasTitles())
        return Result;
    for (std::size_t I = 0; I < Titles.size(); ++I) {
        const auto Pair = SplitMapLine(MapLines[I], &Destination);
        const auto Title = BareTitle(Titles[I]);
        const auto IsCalled = [Title](const TKvISourceColumn& Each) { return SameText(Each.Title, Title); };
        const auto Found = std::ranges::find_if(Source.Columns(), IsCalled);
        const bool IsThere = Found != Source.Columns().end();
        if (Title.empty() || (IsThere && ToDisplay(Found->Name) == Pair.Column))
            continue;
        if (IsThere) {
            MapLines[I] = Pair.Field + "=" + ToDisplay(Found->Name);
            Result.push_back({.Kind = jfColumnMoved,
                              .Name = ToDisplay(Found->Name),
                              .Value = ToDisplay(Titles[I]),
                              .Was = Pair.Column});
        }
        else if (Source.HeaderRow() > 0 || Source.ColumnNamed(Pair.Column).Kind != snMissing)
            Refuse({.Kind = jfColumnGone,
                    .Name = Source.Title(),
                    .Value = ToDisplay(Titles[I]),
                    .Was = Pair.Field,
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
    EraseOwnSettings(File);                         // those of another kind would not be read again
    auto& SourceName = Source.Component().SourceFileName;
    const auto Given = std::exchange(SourceName, NameFrom(FileName, SourceName));
    Source.Component().WriteSpecification(File, FromDisplay(Name));
    SourceName = Given;
    File.EraseSection(Section);
    WriteText(File, "HeaderRow", NumberText(Source.HeaderRow()));
    std::size_t Line = 0;
    for (const auto& Fate : Plan.Columns) {
        if (const auto Title = TitleOf(Source, Fate); !Fate.Field.empty() && !Title.empty()) {
            File.WriteString(Section, LineKey(Line), Plan.Lines[Line]);
            File.WriteString(Section, TitleKey(Line), Title);
        }
        Line += Fate.Field.empty() ? 0 : 1;
    }
    const auto& Formats = Settings.Formats;
    WriteText(File, "BooleanTrue", Formats.BooleanTrue);
    WriteText(File, "BooleanFalse", Formats.BooleanFalse);
    WriteText(File, "CodePage", Formats.CodePage);
    WriteText(File, "OemCodePage", Formats.OemCodePage);
    WriteText(File, "LegacyCodePage", Formats.LegacyCodePage);
    WriteText(File, "AnyThousands", NumberText(Formats.CheckThousands ? 0 : 1));
    WriteText(File, "Destination", NameFrom(FileName, Settings.Destination.Url));
    WriteText(File, "Table", Settings.Destination.Table);
    WriteText(File, "NoForeignKeys", NumberText(Settings.Destination.ForeignKeys ? 0 : 1));
    WriteText(File, "Batch", NumberText(Settings.Run.Batch));
    if (Settings.Run.StopAfter)
        WriteText(File, "StopAfter", std::to_string(*Settings.Run.StopAfter));
    if (Settings.Run.StopShare)
        WriteText(File, "StopShare", FloatToText(*Settings.Run.StopShare));
    File.UpdateFile();
}

} // namespace kv
