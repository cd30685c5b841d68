// KvTextImport - a text import that is ready to run: a file of its own, a destination in memory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvMemoryDataSet.h"
#include "Kvi2txt.h"

namespace kv {

/// A file that lives as long as the object.
class TTemporaryFile
{
public:
    explicit TTemporaryFile(std::string_view Text);
    TTemporaryFile(const TTemporaryFile&) = delete;
    TTemporaryFile& operator=(const TTemporaryFile&) = delete;
    ~TTemporaryFile();

    const std::string& Name() const { return FName; }

private:
    std::string FName;
};

/// Imports comma-separated values into the text fields A, B and C, by default from Field1 to Field3.
class TTextImport : public TKvImportFromText
{
public:
    explicit TTextImport(std::string_view FileText);

    /// Other fields of the destination; drops its records.
    void SetFields(std::vector<TFieldDef> Defs);
    /// Mappings "A=<Sources[0]>", "B=<Sources[1]>", ...
    void MapTo(const std::vector<std::string>& Sources);

    /// Executes and gives the records of the destination, values separated by "|".
    std::vector<std::string> Run();
    /// What Execute cannot do: runs and expects a failure, whose message it gives.
    std::string RunAndFail();
    /// The lines that automatic mapping adds.
    std::vector<std::string> DetectedMappings();

    using TKvImportFromText::DetectAutoMapping;
    using TKvImportFromText::GetTotalCount;
    using TKvImportFromText::TableType;

    TMemoryDataSet Destination;

private:
    TTemporaryFile File;
};

} // namespace kv
