// KvModelCase - a random table, a random file and a random job, all from one seed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KvModelFile.h"
#include "KvModelTable.h"

namespace kv {

struct TModelCase
{
    TModelTable Table;                              ///< With the rows that it has before.
    TModelJob Job;
    TModelFileKind File = mfText;
    int Batch = 0;
    bool IsDryRun = false;
    std::optional<int> StopAfter;

    std::vector<std::string> ColumnNames() const;   ///< Of the file.
    std::string FileBytes() const { return BytesOf(File, ColumnNames(), Job.Records); }
    /// For whoever has to find out why it failed.
    std::string Text() const;
};

TModelCase MakeModelCase(std::uint64_t Seed);

} // namespace kv
