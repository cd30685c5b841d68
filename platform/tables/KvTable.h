// KvTable - a table file of Paradox, dBase or FoxPro as a dataset that can be read.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvDataSet.h"
#include "KvTableRemark.h"
#include "KvTableType.h"

namespace kv {

class TKvTableFile;

/// What datasets of the table engine belong to. Files that are only read need nothing of it but its name.
struct TSession
{
    std::string SessionName = "Default";
};

/// The session of all datasets that name no other.
TSession& Session();

/// A dataset of the table engine.
class TDBDataSet : public TDataSet
{
public:
    using TDataSet::TDataSet;

    std::string_view ClassName() const override { return "TDBDataSet"; }
    TPublishedProperties PublishedProperties() const override;

    std::string SessionName;                        ///< Empty: that of Session().
};

/// The records of a table file, deleted ones left out. Its fields are read-only. The fields are known
/// while the table is open.
class TTable : public TDBDataSet
{
public:
    explicit TTable(TComponent* Owner = nullptr);
    ~TTable() override;

    std::string_view ClassName() const override { return "TTable"; }
    TPublishedProperties PublishedProperties() const override;

    /// The file. A name without an extension that does not exist gets that of TableType, as KvCompanionFile
    /// has it.
    /// Opening raises EFileError, EFormatError "File "%s" is no dBase table: %s" (or Paradox), and
    /// EDatabaseError for a file of neither kind.
    std::string TableName;
    TTableType TableType = ttDefault;
    /// Texts become process text, by the code page that the file names. False: they stay as they are.
    bool Transliterate = true;
    /// Records behind the one of that number are none, from the next First on; 0: all are read.
    int LastRecord = 0;

    /// The number of the current record, from 1, 0 when there is none; deleted ones have numbers too.
    int RecNo();
    /// What is odd about the file, as far as it has been read; nothing while it is not open.
    std::vector<TKvTableRemark> Remarks() const;

protected:
    void InternalOpen() override;
    void InternalClose() override;
    void InternalFirst() override;
    void InternalNext() override;
    bool InternalEof() override;
    int InternalRecordCount() override;
    TVariant InternalGetValue(const TField& Field) override;
    void InternalInsert(const TRecordBuffer& Written) override;
    void InternalUpdate(const TRecordBuffer& Written) override;
    void InternalDelete() override;
    bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                        TLocateOptions Options) override;
    std::string DisplayName() const override;

private:
    void ReturnTo(std::size_t Before);

    std::unique_ptr<TKvTableFile> File;
    std::size_t RecordsBefore = 0;                  // the current one
};

} // namespace kv
