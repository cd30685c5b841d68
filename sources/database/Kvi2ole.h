// Kvi2ole - imports one table of an Access database.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KvSet.h"
#include "KvStringList.h"
#include "KviFileImport.h"
#include "KviSourceColumns.h"

namespace kv {

class TKvAccessSession;

/// Rules that take the place of older ones.
enum TKvIAccessExtension {
    /// A run without mappings opens the table and takes its fields into those of the same name, be it
    /// written with other capitals. Without it such a run fails before its first record: the table is not
    /// open yet when its fields are asked for.
    xaOpensForMapping,
    /// RowFirst and RowLast are the numbers of the first and last record to import. Without it the run begins
    /// with the table's first record, and they only say how many it takes.
    xaSkipsToRowFirst,
    /// What cannot be read costs no more than itself: a record with such a value is an error of that record,
    /// and a field whose type cannot be read is no column, which SourceRemarks() tells. Without it such a
    /// value ends the run.
    xaUnreadableValues
};
using TKvIAccessExtensions = TSet<TKvIAccessExtension>;

/// Imports a table of an Access database. Source columns are the names of its fields, exactly as they are
/// written there; another name is a constant that imports itself. The run begins with the table's first
/// record, whatever RowFirst says: RowLast - RowFirst + 1 is how many records it takes.
///
/// Looks keep the database and the table open. The parts of a database are all of its tables.
class TKvImportFromAccess : public TKvImportFromFile
{
public:
    explicit TKvImportFromAccess(TComponent* Owner = nullptr);
    ~TKvImportFromAccess() override;

    std::string_view ClassName() const override { return "TKvImportFromAccess"; }
    TPublishedProperties PublishedProperties() const override;

    std::string TableName;                          ///< In the database.

    /// Seconds that a run waits for the next records; 0: 30.
    int Patience = 0;
    TKvIAccessExtensions Extensions;

    TKvISourcePosition SourcePosition() const override;
    /// The values of all fields; null for one that cannot be read.
    TVariant SourceRecord() override;
    void EndLook() override;
    std::vector<TKvISourceRemark> SourceRemarks() const override { return Remarks; }
    std::vector<TKvISourcePart> SourceParts() override;
    void SelectPart(int Index, const TKvISourcePart& Part) override;

    static std::string Extension() { return ".MDB"; }
    static std::string FillFileFilters();

protected:
    bool NotDefined(std::string& PropName) override;
    /// For fields of exactly the same name; see xaOpensForMapping. Raises Exception when the table is not
    /// open or has no such field.
    void DetectAutoMapping() override;
    void BeforeImport() override;
    void GoFirst() override;
    int GetTotalCount() override;
    bool NeedMore() override;
    bool LoadRecord() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override;
    void AfterImport() override;
    /// Raises Exception "Property %s wasn't specified." when there is no table to look at.
    void BeforeLook(const TKvISourceLook& What) override;
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    void AfterLook() override;

    /// Opens what the last look has not left open; no table when its name is empty.
    void OpenForLook(const std::string& Table);
    TVariant FieldValue(int Field);                 ///< As a run gets it, fields from 0.

private:
    template <class TAct> void UnlessCancelled(TAct Act);
    void OpenSession(const std::string& Table, bool MayKeep);
    void NoteUnreadable();
    TKvISourcePart Describe(const std::string& Table);

    const std::unique_ptr<TKvAccessSession> Session; // open from BeforeImport to AfterImport, and by a look
    int CurrentRow = 0;                             // from 0
    TKvSourceColumns<int> Columns;                  // fields from 0; -1: no such field
    std::vector<TKvISourceRemark> Remarks;          // on the table that was opened last
    bool IsForLook = false;                         // the session is open
};

/// Adds to `Items` the names of all tables of the database, system tables too; with a `TableName`, those of
/// the fields of that table. Raises Exception "Property %s wasn't specified." with "DatabaseName"
/// when that is empty.
void GetAccessTables(TStrings& Items, const std::string& DatabaseName, const std::string& TableName);

/// Shows the first 20 records of a table: `Callback` gets the values of each record as an array from 0.
/// `FieldNames` becomes the list of all fields, separated by ";"; to `Columns`, when given, each is added as
/// a line. Without a `TableName` there is nothing to show. Raises what opening and reading the table raises.
void LoadAccessPreview(TPersistent* Sender, const std::string& TableName, const std::string& FileName,
                       std::string& FieldNames, bool Flag, TStrings* Columns,
                       const TPreviewCallback& Callback, TKvIAccessExtensions Extensions = {});

} // namespace kv
