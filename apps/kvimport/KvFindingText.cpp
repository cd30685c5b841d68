#include "KvFindingText.h"

#include <algorithm>

#include "KvColumnLetters.h"
#include "KvImportOptions.h"
#include "KvKindText.h"
#include "KvOptionText.h"
#include "KvTerminalText.h"

namespace kv {

namespace {

/// As many of the names as a message holds: what is no header may be of any size.
std::string FirstNames(const std::vector<std::string>& Names)
{
    constexpr std::size_t MaxSize = 300;            // bytes
    constexpr int MaxWidth = 40;
    std::vector<std::string> First;
    for (std::size_t Size = 0; First.size() < Names.size() && Size < MaxSize; Size += First.back().size())
        First.push_back(FitToWidth(VisibleText(Names[First.size()]), MaxWidth));
    const auto More = Names.size() - First.size();
    return JoinNames(First) + (More > 0 ? " and " + std::to_string(More) + " more" : "");
}

/// With no more of what came from elsewhere than a message holds.
TJobFinding Brief(TJobFinding Found)
{
    for (auto* const Text : {&Found.Name, &Found.Value, &Found.Was})
        *Text = BriefText(*Text);
    return Found;
}

std::string Row(const TJobFinding& Found)
{
    return Found.Unit + " " + std::to_string(Found.Number);
}

std::string SheetText(const TJobFinding& Found)
{
    return "sheet " + std::to_string(Found.Number) + " of " + std::to_string(Found.Count) + ", '" +
           Found.Value + "'" + (Found.Given ? "" : "; --sheet takes another");
}

std::string HeaderText(const TJobFinding& Found)
{
    return Row(Found) + " looks like a header; --first-row " + std::to_string(Found.Number + 1) + " skips it";
}

std::string OtherDates(const TJobFinding& Found)
{
    const auto Many = Found.Count == Found.Limit
                        ? "it"
                        : GroupDigits(Found.Count) + " of " + GroupDigits(Found.Limit) + " dates like it";
    return Found.Place + ": '" + Found.Value + "' is no date; --date-order " + Found.Was +
           " --date-separator " + std::string(1, Found.Character) + " reads " + Many;
}

std::string HeaderFound(const TJobFinding& Found)
{
    return Row(Found) + " names the columns" +
           (Found.Number > 1 ? ", what stands above it is left out" : "") +
           (Found.Given ? "" : "; --first-row 1 imports all");
}

std::string SavedText(const TJobFinding& Found)
{
    const auto Named = Found.Was.empty() ? "not" : Found.Was;
    return "as " + Found.Value + " has it" + (Found.Given ? "" : ", which names the source " + Named);
}

std::string Plural(std::int64_t Count, const std::string& One, const std::string& Many)
{
    return GroupDigits(Count) + (Count == 1 ? One : Many);
}

std::string RowsFrom(const TJobFinding& Found)
{
    return Found.Count == 1
             ? Row(Found) + " has"
             : GroupDigits(Found.Count) + " " + Found.Unit + "s, the first of them " + Row(Found) + ", have";
}

std::string OtherWidth(const TJobFinding& Found)
{
    const auto Than = " values than " + Found.Unit + " " + std::to_string(Found.Limit) + ": ";
    if (Found.Kind == jfFewerValues)
        return RowsFrom(Found) + " fewer" + Than + "the missing ones count as empty";
    return RowsFrom(Found) + " more" + Than +
           (Found.Given ? "the extra ones were not imported"
                        : "the extra ones were imported only where a mapping names them");
}

std::string EmptyRows(const TJobFinding& Found)
{
    if (Found.Count == 1)
        return Row(Found) + " is empty and was left out";
    return GroupDigits(Found.Count) + " empty " + Found.Unit + "s were left out, the first of them " +
           Row(Found);
}

std::string BeyondExtent(const TJobFinding& Found)
{
    if (Found.Kind == jfRowsBeyond)
        return "the sheet declares " + GroupDigits(Found.Limit) + " rows and holds values down to row " +
               GroupDigits(Found.Count) + ": the rest is not read with --classic";
    return "the sheet declares " + GroupDigits(Found.Limit) + " columns and holds values up to column " +
           SpreadSheetLetters(static_cast<int>(Found.Count)) + ": with --classic only --map finds the rest";
}

std::string RowsMissing(const TJobFinding& Found)
{
    const auto Text = "it counts " + Plural(Found.Limit, " " + Found.Unit, " " + Found.Unit + "s") + ", " +
                      GroupDigits(Found.Count) + " can be read: " + Found.Was;
    return Found.Count == 0
               ? Text
               : Text + "; --last-row " + std::to_string(Found.Count) + " imports those before the damage";
}

// Refusals.

std::string NumberedNames(const std::vector<std::string>& Names)
{
    std::vector<std::string> Texts;
    for (const auto& Name : Names)
        Texts.push_back(std::to_string(Texts.size() + 1) + " '" + Name + "'");
    return FirstNames(Texts);
}

std::string NoSuchTableNumber(const TJobFinding& Found)
{
    return "--table-number " + Found.Value + ": " + Found.Name + " has " +
           (Found.Count == 0 ? "no table" : "tables 1 to " + std::to_string(Found.Count));
}

std::string NoSuchField(const TJobFinding& Found)
{
    const auto Where = Found.Name.empty() ? "--keys" : "'" + Found.Name + "'";
    return Where + ": there is no field '" + Found.Value + "'; the fields are " + FirstNames(Found.Fields);
}

std::string NotThousands(const TJobFinding& Found)
{
    const auto Name = NameOfCharacter(Found.Character);
    return Found.Name + ", " + Found.Place + ": '" + Found.Value + "' has a " + Name +
           " where no thousands end; say --decimal-separator " + Name +
           " if a fraction follows it, or --thousand-separator " + Name + " to fail such records alone";
}

std::string NoSuchColumn(const TJobFinding& Found)
{
    return "'" + Found.Value + "' is no column; the columns are " +
           (Found.Names.empty() ? ColumnsAreCalled(Found.Was) : FirstNames(Found.Names)) +
           "; --set FIELD=TEXT gives every record a text";
}

std::string ColumnMissing(const TJobFinding& Found)
{
    return "there is no column '" + Found.Value + "': " + Found.Name + ", " + Row(Found) + " has " +
           Plural(Found.Count, " column", " columns");
}

std::string NoConstant(const TJobFinding& Found)
{
    return "--set: '" + Found.Value + "' cannot be what every record of a source of kind " + Found.Was +
           " gets";
}

std::string ColumnGone(const TJobFinding& Found)
{
    const auto Where = Found.Number > 0 ? Found.Name + ", " + Row(Found) : Found.Name;
    return Where + " has no column '" + Found.Value + "', which was saved for field " + Found.Was;
}

std::string OptionOfCodePage(const std::string& Setting)
{
    return Setting == "CodePage"    ? "--code-page"
         : Setting == "OemCodePage" ? "--oem-code-page"
                                    : "--legacy-code-page";
}

std::string SourceRefusal(const TJobFinding& Found)
{
    switch (Found.Kind) {
    case jfNoSuchKind:        return "--from: '" + Found.Value + "' is none of " + JoinNames(KindNames());
    case jfNoSuchSetting:     return "a source of kind " + Found.Value + " has no such setting";
    case jfUnknownFile:
        return Found.Name +
               " is no text and of no other kind that is known; kvimport formats lists the kinds, --from "
               "takes the file for one";
    case jfIsDatabase:
        return Found.Name + " is an SQLite database, into which kvimport imports; it reads none";
    case jfRowsOutOfOrder:
        return "--last-row " + std::to_string(Found.Count) + " lies before --first-row " +
               std::to_string(Found.Number);
    case jfNoHeaderLeft:
        return "--first-row 1 leaves no header " + Found.Unit +
               " to find the columns by name; use --by-position or --map";
    case jfNoPipe:            return SuchSource(Found.Value) + " cannot be read from " + Found.Name;
    case jfNoOemText:
        return "--charset msdos has no meaning for a source of kind " + Found.Value +
               ", whose text has no code page";
    case jfPartMissing:
        return "--source-table is missing; the tables of " + Found.Name + " are " + FirstNames(Found.Names);
    case jfNoSuchTable:
        return "--source-table: " + Found.Name + " has no table '" + Found.Value + "'; its tables are " +
               FirstNames(Found.Names);
    case jfNoSuchSheet:
        return "--sheet: " + Found.Name + " has no sheet '" + Found.Value + "'; its sheets are " +
               NumberedNames(Found.Names);
    case jfNoSuchTableNumber: return NoSuchTableNumber(Found);
    case jfNoTables:          return Found.Name + " has no tables";
    case jfNoTitles:
        return "sheet " + std::to_string(Found.Count) + " of " + Found.Name +
               " has no names of columns in row " + std::to_string(Found.Number) +
               "; --first-row is the row after the one that has them";
    case jfNoHeader: return Found.Name + " has no header " + Found.Unit + " to find the columns by name";
    case jfClassicByOrder:
        return "with --classic the first mapping takes the first cell of a row and so on, whatever columns "
               "are "
               "called; use --by-position or --map";
    case jfNoSource:          return Found.Name + " names no source; say --source FILE";
    case jfSourceNoFile:
        return Found.Name + " names the source " + Found.Value + ", which is no regular file";
    case jfSourceGone:
        return Found.Name + " names the source " + Found.Value +
               ", which is not there; --source FILE names another";
    default:                  return {};
    }
}

std::string PlanRefusal(const TJobFinding& Found)
{
    switch (Found.Kind) {
    case jfNoColumnMatches:
        return "no column has the name of a field; the columns are " + FirstNames(Found.Names) +
               "; the fields are " + FirstNames(Found.Fields) +
               "; --map or --by-position joins them otherwise";
    case jfNoColumns:
        return "there is no column to import" +
               (Found.Names.empty() ? "" : "; the columns are " + FirstNames(Found.Names));
    case jfBadMapLine:
        return "--map: '" + Found.Value + "' is no pair such as ID=Field1: a field and a column";
    case jfNoSuchField:       return NoSuchField(Found);
    case jfFieldTwice:        return "'" + Found.Name + "': the field has a column already";
    case jfFieldReadOnly: return "'" + Found.Name + "': its field is computed by the database: not imported";
    case jfFieldUnnameable:
        return "'" + Found.Name + "': the name of its field cannot stand in a mapping: not imported";
    case jfNoSuchColumn:      return NoSuchColumn(Found);
    case jfColumnMissing:     return ColumnMissing(Found);
    case jfNoConstant:        return NoConstant(Found);
    case jfKeysMissing:
        return "--keys is missing: --mode " + NameOfMode(static_cast<TImportMode>(Found.Number)) +
               " finds records by keys, and the table has no primary key";
    case jfKeyNotMapped:
        return "--keys: the field '" + Found.Value + "' gets no column, so no record can be found by it";
    case jfSameSeparators:
        return "--decimal-separator and --thousand-separator are the same; one of them must be another";
    case jfDateOrder:
        return "dates in the order " + Found.Value + " cannot be read; say --date-order ymd, mdy or dmy";
    case jfTableMissing:
        return "--table is missing; the tables of " + Found.Name + " are " + FirstNames(Found.Names);
    case jfSameFile:          return "the source and --to are the same file, " + Found.Name;
    case jfNotThousands:      return NotThousands(Found);
    case jfColumnGone:        return ColumnGone(Found);
    case jfCodePage: return OptionOfCodePage(Found.Name) + ": Unknown code page '" + Found.Value + "'";
    default:                  return {};
    }
}

} // namespace

std::string FindingText(const TJobFinding& Given)
{
    const auto Found = Brief(Given);
    switch (Found.Kind) {
    case jfDelimiter:
        return "delimiter " + NameOfCharacter(Found.Character) + ", as " + Row(Found) + " has it";
    case jfHeader:          return HeaderFound(Found);
    case jfSheet:           return SheetText(Found);
    case jfOnlyTable:       return "table " + Found.Value + ", the only one";
    case jfForeignText:
        return "the table does not name the code page of its text, which is taken for " + Found.Value +
               "; --charset msdos takes it for " + Found.Was;
    case jfClassicRows: return "--classic: all records are imported, whatever --first-row and --last-row say";
    case jfClassicCount:
        return "--classic: records are taken from the first one on; --first-row and --last-row only say how "
               "many";
    case jfClassicCells:    return "--classic: the first mapping takes the first cell of a row and so on";
    case jfLooksLikeHeader: return HeaderText(Found);
    case jfOtherDates:      return OtherDates(Found);
    case jfLegacyText:
        return Found.Place + " is no UTF-8: such text is taken for " + Found.Value +
               "; --code-page takes it for another";
    case jfUtf8Text:
        return Found.Place + " is UTF-8 and is read as " + Found.Value +
               "; without --code-page and --charset it is read as UTF-8";
    case jfSaved:           return SavedText(Found);
    case jfMapsItself:
        return "it has no mappings: columns and fields are joined by the rules of the component";
    case jfColumnMoved:
        return "column '" + Found.Value + "' is " + Found.Name + " now, it was saved as " + Found.Was;
    case jfUnreadable: return Plural(Found.Count, " value", " values") + " cannot be read: " + Found.Value;
    case jfFewerValues:
    case jfMoreValues:      return OtherWidth(Found);
    case jfRowsBeyond:
    case jfColumnsBeyond:   return BeyondExtent(Found);
    case jfCellsBeyond:
        return Plural(Found.Count, " value stands", " values stand") +
               " beyond column IV, the last that can be read";
    case jfChangesOthers:
        return "records of table '" + Found.Name +
               "' that refer to a deleted one are deleted or changed with it; --no-foreign-keys leaves them "
               "alone";
    case jfHeldByOthers:
        return "a record to which one of table '" + Found.Name +
               "' refers cannot be deleted; --no-foreign-keys deletes it all the same";
    case jfOldText:
        return Plural(Found.Count, " text is", " texts are") +
               " of a code page that the file does not name, the first in " + Row(Found) +
               ": --charset msdos and --oem-code-page say it";
    case jfOlderWorkbook:
        return "the file holds its workbook twice; the older, which may lack characters, is read: " +
               Found.Was;
    case jfSeveralTables:
        return "rows of " + GroupDigits(Found.Count) +
               " tables were read one after the other; --table-number takes one";
    case jfEmptyRows:       return EmptyRows(Found);
    case jfWideCharacters:
        return RowsFrom(Found) +
               " characters of several bytes: columns count bytes, so what follows those is cut too early";
    case jfUnknownEncoding:
        return "it calls its encoding '" + Found.Value + "', which is not known; --code-page says what it is";
    case jfForeignBytes:
        return "not all of its text is " + Found.Value + ": what is none is taken for " + Found.Was +
               "; --code-page takes it for another";
    case jfUndefinedBytes:
        return "it has bytes without a meaning in " + Found.Value +
               ", records with them are refused; --code-page takes it for another";
    case jfCutOff: return "it ends inside a table: it may have been cut off";
    case jfReplacedRecords:
        return Plural(Found.Count, " record that is", " records that are") +
               " deleted or replaced by others in its log of changes were left out";
    case jfElementsLeftOut:
        return Plural(Found.Count, " element", " elements") +
               " inside records were left out: they hold elements, or come twice in a record";
    case jfColumnLeftOut:   return "column '" + Found.Value + "' is not imported: " + Found.Was;
    case jfBytesLeftOut:
        return Plural(Found.Count, " byte", " bytes") + " at the end of each " + Found.Unit +
               " belong to no column: not imported";
    case jfRowsBeyondCount:
        return Plural(Found.Count, " more " + Found.Unit, " more " + Found.Unit + "s") + " than the " +
               GroupDigits(Found.Limit) + " that it counts: not imported";
    case jfRowsMissing:     return RowsMissing(Found);
    case jfNumbersLost:
        return RowsFrom(Found) +
               " asterisks for numbers that were too long for their column: they count as empty";
    default:                return RefusalText(Given);
    }
}

std::vector<std::string> FindingTexts(const std::vector<TJobFinding>& Findings)
{
    std::vector<std::string> Texts;
    for (const auto& Finding : Findings)
        Texts.push_back(FindingText(Finding));
    return Texts;
}

std::string RefusalText(const TJobFinding& Given)
{
    const auto Found = Brief(Given);
    const auto Text = SourceRefusal(Found);
    return Text.empty() ? PlanRefusal(Found) : Text;
}

TExitStatus StatusOfRefusal(const TJobFinding& Found)
{
    switch (Found.Kind) {
    case jfNoSuchKind:
    case jfNoSuchSetting:
    case jfRowsOutOfOrder:
    case jfNoHeaderLeft:
    case jfNoPipe:
    case jfNoOemText:
    case jfClassicByOrder:
    case jfNoSource:
    case jfSameSeparators:
    case jfDateOrder:
    case jfSameFile:
    case jfCodePage: return esUsage;
    default:         return esFailed;
    }
}

} // namespace kv
