// Kvi2bde - imports a table file of Paradox, dBase or FoxPro.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvSet.h"
#include "KvStringList.h"
#include "KvTableType.h"
#include "KviFileImport.h"
#include "KviSourceColumns.h"

namespace kv {

class TTable;

/// Rules that take the place of older ones.
enum TKvITableExtension {
    /// A run without mappings opens the table and takes its fields into those of the same name. Without it
    /// such a run fails before its first record: a table that is not open yet knows no fields.
    xbOpensForMapping,
    /// RowFirst and RowLast are the numbers of the first and last record to import, deleted ones counted;
    /// damage behind the last one does not matter. Without it all are imported, and both only shape the count
    /// that is expected.
    xbKeepsToRows
};
using TKvITableExtensions = TSet<TKvITableExtension>;

/// Imports the records of a table file, all that are not deleted. Source columns are field names; a name that
/// the table does not have is a constant that imports itself. A record with a value that cannot be read is an
/// error of that record. With csiASCII_MSDOS texts are of the OEM code page, whatever the table says of them.
/// Looks keep the table open.
class TKvImportFromBDE : public TKvImportFromFile
{
public:
    /// `Kind` is teParadox or teDBase: what a specification that is saved calls the source.
    explicit TKvImportFromBDE(TComponent* Owner = nullptr, TTableTypeImport Kind = teParadox);
    ~TKvImportFromBDE() override;

    std::string_view ClassName() const override { return "TKvImportFromBDE"; }
    TPublishedProperties PublishedProperties() const override;

    /// What the table is opened as; with ttDBase the first 10 characters of names count. A component of the
    /// kind teDBase takes ttDefault for ttDBase.
    TTableType TableType = ttDefault;
    TKvITableExtensions Extensions;

    /// By the number that the record has in the table.
    TKvISourcePosition SourcePosition() const override;
    /// The values of all fields; null for one that cannot be read.
    TVariant SourceRecord() override;
    void EndLook() override;
    std::vector<TKvISourceRemark> SourceRemarks() const override;
    TKvISourceName ResolveName(const std::string& Wanted,
                               const std::vector<TKvISourceColumn>& Shown) const override;

protected:
    bool FieldIsTruncated() const override { return TypeOfTable() == ttDBase; }
    /// For the fields that the closed table knows, which are none: see xbOpensForMapping.
    void DetectAutoMapping() override;
    /// Raises Exception when there are no mappings: every record would be empty.
    void BeforeImport() override;
    void GoFirst() override;
    int GetTotalCount() override;
    bool NeedMore() override;
    bool LoadRecord() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override;
    void AfterImport() override;
    void BeforeLook(const TKvISourceLook& What) override;
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    void AfterLook() override;

    /// Opens the table for a look, unless the last one has left it open, in the session of `Destination`.
    void OpenForLook(const TDataSet* Destination);
    /// From BeforeImport to AfterImport, and open from a look to the next run or to EndLook; else none.
    TTable* SourceTable() const { return Table.get(); }

private:
    TTableType TypeOfTable() const;
    bool TranslatesText() const { return CharacterSet != csiASCII_MSDOS; }
    void PrepareTable(const TDataSet* Destination);
    void CloseTable();
    bool IsKept() const;
    bool HasRecord() const;
    bool IsCutFrom(std::string_view FieldName, std::string_view Column) const;
    std::pair<TField*, TField*> FieldsCalled(std::string_view Column) const;
    TField* FindColumn(const std::string& Column) const;

    std::unique_ptr<TTable> Table;
    TKvSourceColumns<TField*> Columns;              // none: no such field
    std::vector<TKvISourceRemark> Remarks;          // on the table that was open last
    bool IsForLook = false;                         // the table is open
    bool GivenUp = false;                           // the user has cancelled before the first record
};

/// The kinds of sources that a program may offer: all of them.
TImportFormatTypes GetAvailableImportFormats();

/// Shows the first 19 records of a table: `Callback` gets the values of the fields in `FieldNames`, separated
/// by ";", as an array from 0. Empty `FieldNames` become the list of all fields, and `Columns`, when given,
/// their names, one a line. `DataSet`, which may be none, is the destination, whose session the table takes.
/// Raises what opening the table and reading it raises, and EDatabaseError for a field that it does not have.
void LoadBDEPreview(TPersistent* Sender, const std::string& FileName, std::string& FieldNames, bool IsDBase,
                    const TDataSet* DataSet, bool Flag, TStrings* Columns, const TPreviewCallback& Callback,
                    TKvITableExtensions Extensions = {});

} // namespace kv
