// KvRecordingDataSet - a dataset in memory that notes what is done to its records.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KvCallLog.h"
#include "KvMemoryDataSet.h"

namespace kv {

/// Notes "first", "locate 2", "insert 1;Ada", "update NAME=Eve" (the assigned fields) and "delete 1;Ada".
class TRecordingDataSet : public TMemoryDataSet
{
public:
    explicit TRecordingDataSet(TCallLog& Calls) : Log(Calls) {}

    // What may raise when a record is stored or deleted.
    std::function<void()> OnInsert, OnDelete;

    /// Adds records without noting it; leaves the cursor on the first.
    void Fill(const std::vector<std::vector<TVariant>>& Records);

protected:
    void InternalFirst() override;
    void InternalInsert(const TRecordBuffer& Written) override;
    void InternalUpdate(const TRecordBuffer& Written) override;
    void InternalDelete() override;
    bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                        TLocateOptions Options) override;

private:
    void Note(const std::string& Entry);

    TCallLog& Log;
    bool Silent = false;
};

/// The values of the current record, separated by ";".
std::string RecordText(TDataSet& DataSet);
/// All records, each as RecordText. Ends past the last one.
std::vector<std::string> RecordTexts(TDataSet& DataSet);

} // namespace kv
