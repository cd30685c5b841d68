// KvTextImport - a text import that is ready to run.
#pragma once

#include <string_view>

#include "KvFileRun.h"
#include "Kvi2txt.h"

namespace kv {

/// Imports comma-separated values into the text fields A, B and C, by default from Field1 to Field3.
class TTextImport : public TFileRun<TKvImportFromText>
{
public:
    explicit TTextImport(std::string_view FileText) : TFileRun(FileText)
    {
        SetFieldDelimiter(fdComma);
        MapTo({"Field1", "Field2", "Field3"});
    }
};

} // namespace kv
