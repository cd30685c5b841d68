// KvModelTable - a table and what imports make of it, told by rules that are written down here a second time
// and as simply as possible: no key is looked up, no value is kept but as the text that SQLite shows.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KviTypes.h"

namespace kv {

enum TModelKind { mkInteger, mkText, mkShortText, mkDecimal, mkReal, mkDate, mkBoolean };

constexpr int ModelKinds = mkBoolean + 1;

struct TModelColumn
{
    std::string Name;
    TModelKind Kind = mkText;
    bool IsRequired = false;
    bool IsUnique = false;
    bool IsPositive = false;                        ///< Checked: above 0.
};

/// How the columns of the key are declared.
enum TModelKey {
    mkRowid,                                        ///< INTEGER PRIMARY KEY
    mkPrimary,                                      ///< PRIMARY KEY (...), of one column or several
    mkWithoutRowid,                                 ///< the same in a table WITHOUT ROWID
    mkIndexed,                                      ///< a UNIQUE index
    mkPlain                                         ///< not at all: of several the oldest record is found
};

/// One value as SQLite shows it, "integer:5"; none for NULL.
using TModelValue = std::optional<std::string>;
using TModelRow = std::vector<TModelValue>;         // one value a column
/// Texts of a source, one a column that it has; none where there is nothing.
using TModelRecord = std::vector<std::optional<std::string>>;

struct TModelTable
{
    std::vector<TModelColumn> Columns;
    std::vector<int> Keys;                          ///< Columns.
    TModelKey KeyKind = mkPlain;
    std::vector<TModelRow> Rows;                    ///< The oldest first.

    std::string Declaration() const;                ///< CREATE TABLE orders ...
    /// A SELECT that shows each row as RowText does.
    std::string Query() const;
};

std::string RowText(const TModelRow& Row);

struct TModelFigures
{
    int Read = 0, Added = 0, Updated = 0, Deleted = 0, Failed = 0, NotFound = 0;
    bool operator==(const TModelFigures&) const = default;
};

struct TModelJob
{
    TImportMode Mode = imAppend;
    std::vector<int> Columns;                       ///< Of the table, in the order of the source.
    std::vector<TModelRecord> Records;
};

/// Does the job to `Table`.
TModelFigures RunModel(TModelTable& Table, const TModelJob& Job);

/// How the text of a source stands in a column; none where it is no value for it.
std::optional<std::string> StoredText(TModelKind Kind, const std::string& Text);

} // namespace kv
