// KvJobSource - the source of an import: its kind, its parts, its columns and its first rows, as a run will
// read them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KvFileAlias.h"
#include "KvJobFindings.h"
#include "KvJobHeader.h"
#include "KvJobSettings.h"
#include "KvSpooledFile.h"
#include "KviFileImport.h"
#include "KviSourceKind.h"

namespace kv {

class TJobFile;
class TKvImportFromText;

/// What a name on the right side of a mapping line leads to.
struct TJobColumn
{
    TKvISourceColumn Column;
    TKvISourceNameKind Kind = snColumn;
    bool ByTitle = false;                           ///< The name is the one that the source gives it.
};

/// What of a source is looked at, and how its columns get their names.
struct TJobLook
{
    /// Whoever judges values looks at no more.
    static constexpr int SampleRows = 200;

    /// Columns must have names: a row is their header even when it does not look like one. Else a header is
    /// found where there is one.
    bool FindTitles = true;
    int Rows = SampleRows;
    /// Right sides of mapping lines: a row that has one of these names is the header.
    std::vector<std::string> Wanted = {};
    bool ShowsTitles = false;                       ///< A header in row 1 need not be told: it is seen.
};

/// A source that is opened once to look at it. Its run opens it a second time, and no more.
class TJobSource
{
public:
    /// Opens it and says of what kind it is. `Continue`, which outlives it, is asked now and then while
    /// something is read or keeps it waiting; false stops that. Raises EJobRefused, and what opening the file
    /// raises.
    TJobSource(const TJobSourceSettings& Settings, const std::function<bool()>& Continue);
    /// The same for a saved import, whose component is taken; rows of `Settings` win over what it says.
    TJobSource(TJobFile& Saved, const TJobSourceSettings& Settings, const std::function<bool()>& Continue);
    TJobSource(const TJobSource&) = delete;
    TJobSource& operator=(const TJobSource&) = delete;
    ~TJobSource();

    const TKvISourceKind& Kind() const { return *FKind; }
    /// What messages call the source: the file as it was named. UTF-8.
    const std::string& Title() const { return FTitle; }
    /// What a row is called where its number follows: "line".
    std::string Unit() const { return std::string(FComponent->PositionUnit()); }
    /// Sheets or tables of the file; none where there is only the file. Raises what opening it raises.
    const std::vector<TKvISourcePart>& Parts();

    /// Settles part, rows and layout and looks at the first rows. Once. Raises EJobRefused, and what reading
    /// raises.
    void Look(const TJobLook& What);

    // After the look.
    /// Set up as the settings have it; mappings, keys and destination are the caller's.
    TKvImportFromFile& Component() const { return *FComponent; }
    /// True when the component finds out by itself, in each run, which column goes into which field.
    bool MapsItself() const { return FMapsItself; }
    bool IsSaved() const { return FIsSaved; }       ///< Its settings are those of a saved import.
    bool IsClassic() const { return Settings.Classic; }
    bool IsFixed() const { return Settings.Layout.Fixed; }
    /// True when columns have names of their own, and are not only counted.
    bool HasTitles() const { return Kind().Names == cnSource || FHeaderRow > 0; }
    int HeaderRow() const { return FHeaderRow; }    ///< 0: none names the columns.
    int PartNumber() const { return FPartNumber; }  ///< Of the sheet that is imported, from 1.
    const TKvISourceView& View() const { return FView; }
    /// Those that the source offers: rows may be wider.
    const std::vector<TKvISourceColumn>& Columns() const { return FColumns; }
    /// Shows the same rows of these columns; what it has read is not read again.
    void LookAt(const std::vector<std::string>& Columns);
    /// How it was read where nobody had told it.
    const std::vector<TJobFinding>& Findings() const { return FFindings; }
    /// What of the rows looked at cannot be read.
    std::vector<TJobFinding> Unreadable() const;
    /// What is odd about what was loaded last, or about the last run, and is not among the findings.
    std::vector<TJobFinding> Remarks() const;
    /// What a mapping to `Name`, UTF-8 and written in any case, takes: the column of that name, else the one
    /// with that title. What else the component makes of a name counts in saved imports only. Raises
    /// EJobRefused when no row could ever have it, and for text when none that was looked at does.
    TJobColumn ColumnNamed(const std::string& Name) const;
    /// False for a column that a mapping line cannot name: blanks at the ends of a name do not count there.
    bool CanBeNamed(const TKvISourceColumn& Column) const;
    /// What a mapping takes that gives every record `Text`, UTF-8. Raises EJobRefused where the component has
    /// no constants or takes this one for something else.
    TKvISourceColumn Constant(const std::string& Text) const;

private:
    /// Of the component, until a run has one of its own.
    struct TLookObserver final : TKvIRunObserver
    {
        bool KeepsRunning() override { return !Continue || Continue(); }
        std::function<bool()> Continue;
    };

    void OpenFile(const std::function<bool()>& Continue);
    void FindKind();
    void Create(const std::function<bool()>& Continue);
    void CheckKind() const;
    void SetUp(const std::function<bool()>& Continue);
    void SetRows(const TJobLook& What);
    int FindHeaderRow(const TJobLook& What);
    std::vector<std::string> TitlesAmong(const std::vector<std::string>& Wanted) const;
    TJobSample Sample(int First);
    void SetLayout();
    void FindDelimiter(TKvImportFromText& Text);
    void SelectPart();
    void SelectSheet();
    void SelectTable();
    void SelectTableNumber();
    void CheckClassic();
    void CheckText();
    void CheckUtf8();
    void CheckIsThere(const TKvISourceName& Resolved, const std::string& Name) const;
    std::vector<std::string> TableNames() const;

    TJobSourceSettings Settings;
    std::string FTitle;
    std::optional<TSpooledFile> Spooled;            // what came through a pipe ...
    std::optional<TKvFileAlias> Alias;              // ... and the name under which it is opened
    std::string FileName;                           // for the component
    const TKvISourceKind* FKind = nullptr;
    TLookObserver Observer;
    std::unique_ptr<TKvImportFromFile> FComponent;
    bool FIsSaved = false;
    bool FMapsItself = false;
    bool HasLegacyTitle = false;                    // one was no UTF-8 although it should be
    std::optional<char> FoundDelimiter;             // where it is not the usual one
    int FHeaderRow = 0;
    int FPartNumber = 1;
    int Rows = 0;                                   // that are looked at
    std::vector<TKvISourcePart> FParts;
    TKvISourceView FView;
    std::vector<TKvISourceColumn> FColumns;         // the first of those in FView
    std::vector<TJobFinding> FFindings;
};

/// Opens the source of a job, a saved one when there is `Saved`, and looks at it.
std::unique_ptr<TJobSource> OpenSource(TJobFile* Saved, const TJobSettings& Settings,
                                       const std::function<bool()>& Continue);

/// What columns are called, UTF-8: the title, or the name of one without.
std::vector<std::string> TitlesOf(const std::vector<TKvISourceColumn>& Columns);

/// Texts of a value as it stands in the source: UTF-8, and nothing for null.
std::string SourceText(const TVariant& Value);

} // namespace kv
