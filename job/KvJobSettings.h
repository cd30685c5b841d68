// KvJobSettings - everything that an import can be told. Whoever fills it in, a command line, a form or a
// saved import, gets the same import. Texts are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KviSourceKind.h"
#include "KviTypes.h"

namespace kv {

/// How a text file is laid out.
struct TJobLayout
{
    std::optional<char> Delimiter = {};             ///< Not given: told by the file's name and header.
    char Qualifier = '"';
    std::string RecordSeparator = "\r\n";
    bool Fixed = false;
    std::vector<std::string> Columns = {};          ///< Of fixed lines, "NAME=Text1-9": what a look shows.
};

struct TJobSourceSettings
{
    std::string FileName = {};                      ///< "-": standard input.
    /// As TKvISourceKind has it; empty: told by content and name.
    std::string Kind = {};
    /// Which sheet, table or tag of the file, by number or name; empty: the first or only one.
    std::string Part = {};
    TKvISourcePartKind PartKind = spNone;           ///< What Part names; another kind of source refuses it.
    bool Classic = false;                           ///< Without the extensions of the components.
    bool MsDos = false;                             ///< Text is in the OEM code page.
    /// From 1. Not given: after the header, when there is one.
    std::optional<int> RowFirst = {};
    std::optional<int> RowLast = {};
    TJobLayout Layout = {};
    std::optional<int> Patience = {};               ///< Seconds to wait for a source that may hang.
    bool HasLayout = false;                         ///< Layout was said: other kinds than text refuse it.
    /// Bytes that are kept of what can be read only once; more are refused.
    std::uint64_t MaxSpool = std::uint64_t{4} << 30;
};

/// How dates, numbers, truth and text are written in the source. What is not given has a default that does
/// not depend on the locale: the same job imports the same everywhere.
struct TJobFormats
{
    std::optional<TKvIDateOrder> DateOrder = {};    ///< Not given: doYMD.
    std::optional<char> DateSeparator = {};         ///< "-"
    std::optional<char> TimeSeparator = {};         ///< ":"
    std::optional<char> DecimalSeparator = {};      ///< "."
    std::optional<char> ThousandSeparator = {};     ///< A comma, or a point when the comma is taken.
    std::optional<std::string> BooleanTrue = {};    ///< "True"
    std::optional<std::string> BooleanFalse = {};   ///< "False"
    bool CheckThousands = true;                     ///< A thousand separator must stand where thousands end.
    std::string CodePage = {};                      ///< Of the source's text; empty: UTF-8.
    std::string OemCodePage = {};                   ///< The same with MsDos; empty: 437.
    std::string LegacyCodePage = {};                ///< Of what is no UTF-8; empty: windows-1252.
};

/// How columns find their fields.
enum TJobMapping {
    jmByName,
    jmByPosition,                                   ///< The first column into the first field, and so on.
    jmByLines                                       ///< As the lines say, and no others.
};

/// Which column goes into which field, and what a record does to the table.
struct TJobPlanSettings
{
    TJobMapping Mapping = jmByName;
    std::vector<std::string> Lines = {};            ///< "FIELD=column", with jmByLines.
    /// "FIELD=text": every record gets that text, whatever else is mapped how.
    std::vector<std::string> Constants = {};
    TImportMode Mode = imAppend;
    std::vector<std::string> Keys = {};             ///< Fields; none: the primary key.
};

struct TJobDestinationSettings
{
    std::string Url = {};                           ///< "sqlite:shop.db"; a bare path is an SQLite database.
    std::string Table = {};
    int BusyTimeout = 5000;                         ///< Milliseconds to wait for other programs.
    int CacheSize = 0;                              ///< KiB; 0: as the database finds right.
    bool ForeignKeys = true;                        ///< The database holds those that it declares.
};

/// When to stop, and what is kept for good.
struct TJobRunSettings
{
    int Batch = 0;                                  ///< Records of one transaction; 0: all of them.
    bool DryRun = false;                            ///< Everything is done, and then rolled back.
    /// The run ends and is rolled back once more records than this have failed; none: however many.
    std::optional<int> StopAfter = {};
    std::optional<double> StopShare = {};           ///< The same for a share of those that were read, 0 to 1.
};

struct TJobSettings
{
    TJobSourceSettings Source = {};
    TJobFormats Formats = {};
    TJobPlanSettings Plan = {};
    TJobDestinationSettings Destination = {};
    TJobRunSettings Run = {};
};

/// True where records are found by keys.
bool NeedsKeys(TImportMode Mode);

} // namespace kv
