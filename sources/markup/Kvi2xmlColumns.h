// Kvi2xmlColumns - what an import knows of all columns of a packet, once somebody has asked.
#pragma once

#include <vector>

#include "KvXmlFields.h"
#include "Kvi2xml.h"

namespace kv {

struct TKvImportFromXML::TKnownColumns
{
    std::vector<TKvISourceColumn> Columns;
    std::vector<TKvXmlField> Declared;              // by FIELDS sections, as far as they were met
    bool AreAll = false;                            // no record has others, or the file says so
};

} // namespace kv
