// KvJobFile - saved imports: .KVI files, and what of an import they cannot say by themselves.
//
// That stands in a section of its own, which components pass over:
//
//   [Job]
//   HeaderRow=1                  the row whose titles follow; 0 or none: the source names its columns itself
//   Line0=NAME=Field2            mapping 0, where its column was found by name: a title counts as long as
//                                it is so
//   Title0=Customer              that name
//   BooleanTrue, BooleanFalse, CodePage, OemCodePage, LegacyCodePage, AnyThousands, NoForeignKeys,
//   Destination, Table, Batch, StopAfter, StopShare
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvJobFindings.h"
#include "KvJobPlan.h"
#include "KvJobSettings.h"
#include "KviFileImport.h"

namespace kv {

class TDataSet;
class TIniFile;

/// One that was loaded.
class TJobFile
{
public:
    /// Reads the file once. Raises EFileError and EConvertError as loading a specification does, and
    /// Exception when the file says that it has more mappings than it has: a file that was cut would import
    /// less than was saved.
    explicit TJobFile(const std::string& FileName);
    TJobFile(const TJobFile&) = delete;
    TJobFile& operator=(const TJobFile&) = delete;
    ~TJobFile();

    const std::string& FileName() const { return FFileName; }
    const std::string& Name() const { return FName; }                ///< Both only for people.
    const std::string& Application() const { return FApplication; }

    /// The component with the settings of the file; none once it was taken.
    const TKvImportFromFile& Import() const { return *FImport; }
    std::unique_ptr<TKvImportFromFile> TakeComponent();
    TTableTypeImport TableType() const { return FTableType; }
    bool IsFixed() const { return FIsFixed; }
    bool MapsItself() const { return Lines.empty(); }                ///< It has no mappings.
    int HeaderRow() const { return FHeaderRow; }
    /// "FIELD=column", those that map something; in the process's code page.
    const std::vector<std::string>& Mappings() const { return Lines; }
    /// DatasetKeys, name by name; in the process's code page.
    std::vector<std::string> Keys() const;

    /// Where it imports to unless something else is said; empty members where the file does not say it.
    const TJobDestinationSettings& Destination() const { return Job.Destination; }

    /// The code pages that it names, where `Formats` leaves them open: names in the file are in them.
    void TakeCodePages(TJobFormats& Formats) const;
    /// The file's settings where `Settings` leaves them open. What a caller wants to overrule afterwards is
    /// its own.
    /// Raises EJobRefused when there is no source.
    void Complete(TJobSettings& Settings) const;

    /// Takes columns by the titles that they had when the import was saved: lines of `Plan` whose column
    /// stands elsewhere now follow it. Gives what has moved; raises EJobRefused for a column that is gone.
    std::vector<TJobFinding> FollowTitles(const TJobSource& Source, const TDataSet& Destination,
                                          std::vector<std::string>& MapLines) const;

private:
    void ReadJob(const TIniFile& File);
    std::string FindSource() const;

    const std::string FFileName;
    std::string FName, FApplication;
    std::unique_ptr<TKvImportFromFile> FImport;
    TTableTypeImport FTableType;
    bool FIsFixed = false;
    int FHeaderRow = 0;
    std::vector<std::string> Lines;
    std::vector<std::string> Titles;                // by line; empty: not found by name
    TJobSettings Job;                               // what the section says
};

/// Raises Exception when a file of that name is there and is no saved import: the names may have changed
/// places.
void CheckJobFile(const std::string& FileName);

/// Saves what `Source` and `Plan` came to, under `Name`, into a file that is there or not; other sections of
/// it stay. Relative names of source and destination become those from the folder of the file. Raises
/// EFileError, and Exception when the file is there and no saved import.
void SaveJob(const std::string& FileName, const std::string& Name, TJobSource& Source, const TJobPlan& Plan,
             const TJobSettings& Settings);

} // namespace kv
