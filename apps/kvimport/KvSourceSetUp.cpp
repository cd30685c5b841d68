#include "KvSourceSetUp.h"

#include "KvRowRange.h"
#include "KvSourceOptions.h"
#include "KviFileImport.h"

namespace kv {

void SetUpSource(TKvImportFromFile& Import, const std::string& FileName, const TRowRange& Rows,
                 const TSourceOptions& Options)
{
    Import.SourceFileName = FileName;
    Import.RowFirst = Rows.First;
    Import.RowLast = Rows.Last;
    Import.CharacterSet = Options.MsDos ? csiASCII_MSDOS : csiANSI_WINDOWS;
}

} // namespace kv
