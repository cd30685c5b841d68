// Kvi2ole - imports one table of an Access database.
#pragma once

#include <string>

#include "KvAccessSession.h"
#include "KvSet.h"
#include "KvStringList.h"
#include "KviFileImport.h"
#include "KviSourceColumns.h"

namespace kv {

/// Rules that take the place of older ones.
enum TKvIAccessExtension {
    /// A run without mappings opens the table and takes its fields into those of the same name, be it
    /// written with other capitals. Without it such a run fails before its first record: the table is not
    /// open yet when its fields are asked for.
    xaOpensForMapping,
    /// RowFirst and RowLast are the numbers of the first and last record to import. Without it the run begins
    /// with the table's first record, and they only say how many it takes.
    xaSkipsToRowFirst
};
using TKvIAccessExtensions = TSet<TKvIAccessExtension>;

/// Imports a table of an Access database. Source columns are the names of its fields, exactly as they are
/// written there; another name is a constant that imports itself. The run begins with the table's first
/// record, whatever RowFirst says: RowLast - RowFirst + 1 is how many records it takes.
class TKvImportFromAccess : public TKvImportFromFile
{
public:
    explicit TKvImportFromAccess(TComponent* Owner = nullptr);

    std::string_view ClassName() const override { return "TKvImportFromAccess"; }
    TPublishedProperties PublishedProperties() const override;

    std::string TableName;                          ///< In the database.

    TKvIAccessExtensions Extensions;

    TKvISourcePosition SourcePosition() const override;

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
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override;
    void AfterImport() override;

private:
    // One run.
    TKvAccessSession Session;
    int CurrentRow = 0;                             // from 0
    TKvSourceColumns<int> Columns;                  // fields from 0; -1: no such field
};

/// Adds to `Items` the names of all tables of the database, system tables too; with a `TableName`, those of
/// the fields of that table. Raises Exception "Property %s wasn't specified." with "DatabaseName"
/// when that is empty.
void GetAccessTables(TStrings& Items, const std::string& DatabaseName, const std::string& TableName);

/// Shows the first 20 records of a table: `Callback` gets the values of each record as an array from 0.
/// `FieldNames` becomes the list of all fields, separated by ";"; to `Columns`, when given, each is added as
/// a line. Without a `TableName` there is nothing to show.
void LoadAccessPreview(TPersistent* Sender, const std::string& TableName, const std::string& FileName,
                       std::string& FieldNames, bool Flag, TStrings* Columns,
                       const TPreviewCallback& Callback);

} // namespace kv
