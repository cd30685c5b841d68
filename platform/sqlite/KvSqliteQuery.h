// KvSqliteQuery - the result of a SELECT in an SQLite database as a read-only dataset.
#pragma once

#include <memory>
#include <string_view>

#include "KvSqliteDataSet.h"
#include "KvStringList.h"

namespace kv {

/// The records come in the order in which the statement gives them; First runs it anew. A column that
/// is a column of a table has the kind that the table declares, any other is ftVariant. Of several
/// columns of one name the later ones are called NAME_1, NAME_2, ...
class TSQLiteQuery : public TSQLiteDataSet
{
public:
    explicit TSQLiteQuery(TComponent* Owner = nullptr);
    ~TSQLiteQuery() override;

    std::string_view ClassName() const override { return "TSQLiteQuery"; }
    TPublishedProperties PublishedProperties() const override;

    TStrings SQL;                                   ///< One statement that reads and has no parameters.

protected:
    void InternalOpen() override;
    void InternalClose() override;
    int InternalRecordCount() override;
    void InternalInsert(const TRecordBuffer& Written) override;
    void InternalUpdate(const TRecordBuffer& Written) override;
    void InternalDelete() override;
    std::string DisplayName() const override;

private:
    [[noreturn]] void RefuseChange() const;

    std::unique_ptr<TSQLiteRowSource> Source;       // while open
};

} // namespace kv
