// KvSpecification - an import specification on the command line: a .KVI file, the component that it is
// about, and what both say in words.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KviTypes.h"

namespace kv {

class TKvImportBaseComponent;

struct TSpecification
{
    /// Loads the file. Raises EFileError and EConvertError as loading does, and Exception when the file
    /// says that it has more mappings than it has: a file that was cut would import less than was saved.
    explicit TSpecification(const std::string& FileName);
    ~TSpecification();

    /// A published property of the component as text, the name of the value for an enumeration; empty when
    /// it has none of that name.
    std::string Text(std::string_view Property) const;
    /// The elements of its set "Extensions", without their prefix.
    std::vector<std::string> Extensions() const;
    /// DatasetKeys, name by name.
    std::vector<std::string> Keys() const;

    // What only some kinds have.
    bool HasLayout() const { return !Text("FieldDelimiterCustom").empty(); } ///< It is a text file.
    bool IsFixed() const { return Text("Fixed") == "True"; }
    std::string Sheet() const;                      ///< Number of a workbook's sheet, from 1.
    std::string Table() const;                      ///< Number, from 1, or name of one of several tables.

    std::string FileName;
    std::string Name, Application;                  ///< As the file has them, both only for people.
    std::string_view Kind;                          ///< "Text"
    std::unique_ptr<TKvImportBaseComponent> Import;
};

} // namespace kv
