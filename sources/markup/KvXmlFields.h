// KvXmlFields - what the FIELDS section of a data packet declares of a column.
//
//   field := <FIELD attrname="Name" fieldtype="string" WIDTH="20" SUBTYPE="..."/>
#pragma once

#include <string>

#include "KvField.h"
#include "KvXmlAttributes.h"

namespace kv {

struct TKvXmlField
{
    std::string Name;
    std::string TypeName;                           ///< "string", as it is written; empty when there is none.
    TFieldType DataType = ftUnknown;                ///< The field that holds such values.
    int Size = 0;                                   ///< Characters of texts; 0: no limit.
};

/// The field called `Name` that a tag with these attributes declares.
TKvXmlField DeclaredXmlField(std::string Name, const TKvXmlAttributes& Attributes);

} // namespace kv
