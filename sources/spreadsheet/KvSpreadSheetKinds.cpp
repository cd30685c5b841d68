#include "KvSpreadSheetKinds.h"

#include <algorithm>
#include <initializer_list>

#include "KvForeignFile.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"
#include "KviExtensions.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view ExcelBeginnings[] = {
    "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv,           // a compound document
    "\x09\x00\x04\x00"sv, "\x09\x02\x06\x00"sv, "\x09\x04\x06\x00"sv, // sheets of Excel 2 to 4
    "\x09\x08\x08\x00"sv, "\x09\x08\x10\x00"sv};    // of 5 and 8, without a document

/// Workbooks that are not read are taken too: the reader refuses them in words.
bool BeginsWorkbook(std::string_view Beginning)
{
    return std::ranges::any_of(ExcelBeginnings,
                               [Beginning](auto Begin) { return Beginning.starts_with(Begin); }) ||
           BeginsNewerWorkbook(Beginning);
}

/// A record that begins a worksheet: id 0, 2 bytes or more, the version. Versions that are not read are
/// taken too: the reader refuses them in words.
bool IsWorksheetOf(std::string_view Beginning, std::string_view Size,
                   std::initializer_list<std::string_view> Versions)
{
    return Beginning.substr(0, 2) == "\0\0"sv && Beginning.substr(2, 2) == Size &&
           std::ranges::count(Versions, Beginning.substr(4, 2)) > 0;
}

bool BeginsLotusSheet(std::string_view Beginning)
{
    return IsWorksheetOf(Beginning, "\x02\x00"sv, {"\x04\x04", "\x05\x04", "\x06\x04"}) ||
           IsWorksheetOf(Beginning, "\x1A\x00"sv, // 3 and later
                         {"\x00\x10"sv, "\x02\x10"sv, "\x03\x10"sv, "\x05\x10"sv});
}

bool BeginsQuattroSheet(std::string_view Beginning)
{
    // The last two are of later versions.
    return IsWorksheetOf(Beginning, "\x02\x00"sv, {"\x20\x51", "\x21\x51", "\x01\x10", "\x02\x10"});
}

} // namespace

const TKvISourceKind& ExcelSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teXLS,
                                     .Name = "xls",
                                     .Title = "Excel workbooks, Excel 2 to 2003",
                                     .Extensions = {".xls", ".xlt", ".xlw"},
                                     .Part = spSheet,
                                     .Names = cnHeaderRow,
                                     .Recognizes = &BeginsWorkbook,
                                     .Create = &NewImport<TKvImportFromXLS>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromXLS::FillFileFilters};
    return Kind;
}

const TKvISourceKind& LotusSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teWKS,
                                     .Name = "wks",
                                     .Title = "Worksheets of Lotus 1-2-3 and Symphony",
                                     .Extensions = {".wks", ".wk1", ".wk2", ".wr1", ".wrk"},
                                     .Part = spSheet,
                                     .Names = cnHeaderRow,
                                     .Recognizes = &BeginsLotusSheet,
                                     .Create = &NewImport<TKvImportFromWKS>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromWKS::FillFileFilters};
    return Kind;
}

const TKvISourceKind& QuattroSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teQuattro,
                                     .Name = "quattro",
                                     .Title = "Worksheets of Quattro Pro for DOS",
                                     .Extensions = {".wq1"},
                                     .Part = spSheet,
                                     .Names = cnHeaderRow,
                                     .Recognizes = &BeginsQuattroSheet,
                                     .Create = &NewImport<TKvImportFromQuattro>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromQuattro::FillFileFilters};
    return Kind;
}

} // namespace kv
