// KvSpecification - what a saved import says of its component, property by property, as text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvJobFile.h"

namespace kv {

class TSpecification
{
public:
    /// Keeps a reference.
    explicit TSpecification(const TJobFile& Saved) : File(Saved) {}

    /// A published property of the component, the name of the value for an enumeration; empty when it has
    /// none of that name.
    std::string Text(std::string_view Property) const;
    /// The elements of its set "Extensions", without their prefix.
    std::vector<std::string> Extensions() const;
    std::string_view Kind() const;                  ///< "Text"

    // What only some kinds have.
    bool HasLayout() const { return !Text("FieldDelimiterCustom").empty(); } ///< It is a text file.
    std::string Sheet() const;                      ///< Number of a workbook's sheet, from 1.
    std::string Table() const;                      ///< Number, from 1, or name of one of several tables.

private:
    const TJobFile& File;
};

} // namespace kv
