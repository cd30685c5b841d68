// KvSourceSetUp - what the options mean for the components of all kinds.
#pragma once

#include <string>

namespace kv {

class TKvImportFromFile;
struct TRowRange;
struct TSourceOptions;

/// Sets file, rows and character set.
void SetUpSource(TKvImportFromFile& Import, const std::string& FileName, const TRowRange& Rows,
                 const TSourceOptions& Options);

} // namespace kv
