// KvJobTestSource - a file that a job looks at, and a table for its records.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "KvJobFindings.h"
#include "KvJobFormats.h"
#include "KvJobSource.h"
#include "KvMemoryDataSet.h"
#include "KvTempFolder.h"

namespace kv {

/// ID, CITY, TOTAL (computed) and NOTE (required).
struct TJobTestTable : TMemoryDataSet
{
    TJobTestTable()
    {
        SetFieldDefs({{.Name = "ID", .DataType = ftInteger},
                      {.Name = "CITY", .DataType = ftString, .Size = 20},
                      {.Name = "TOTAL", .DataType = ftFloat, .ReadOnly = true},
                      {.Name = "NOTE", .DataType = ftMemo, .Required = true}});
        Open();
    }
};

/// A file of its own folder, looked at under settings that a test may change first.
struct TJobTestSource
{
    TJobTestSource(const std::string& Name, std::string_view Bytes)
    {
        Settings.FileName = Folder.Write(Name, Bytes);
    }

    TJobSource& Look(const TJobLook& What = {})
    {
        Source = std::make_unique<TJobSource>(Settings, [] { return true; });
        SetFormats({}, Source->Component().DataFormats);
        Source->Look(What);
        return *Source;
    }

    const TTempFolder Folder;
    TJobSourceSettings Settings;
    std::unique_ptr<TJobSource> Source;
};

/// What `Action` is refused for. Fails the test when it is not.
template <class TAction> TJobFinding RefusalOf(TAction Action)
{
    try {
        Action();
    }
    catch (const EJobRefused& Refused) {
        return Refused.Finding;
    }
    ADD_FAILURE() << "nothing was refused";
    return {};
}

} // namespace kv
