// KviFileImport - what all sources that read a file have in common: its name, and which of its rows are
// imported.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Kvibase.h"

namespace kv {

/// The abstract import of a file. A source says what its rows are.
class TKvImportFromFile : public TKvImportBaseComponent
{
public:
    TPublishedProperties PublishedProperties() const override;

    using TKvImportBaseComponent::SourceFileName;   ///< The file; a run needs one.
    using TKvImportBaseComponent::RowFirst;         ///< First row to import, from 1.
    using TKvImportBaseComponent::RowLast;          ///< Last row to import.

protected:
    using TKvImportBaseComponent::TKvImportBaseComponent;

    bool NotDefined(std::string& PropName) override;

    /// True while the rows from RowFirst to RowLast are more than the `Count` that were imported.
    bool WantsMoreThan(std::int64_t Count) const { return std::int64_t{RowLast} - RowFirst >= Count; }
};

/// The same component by its class. `Import` is a source that reads a file, as all but dataset copies are.
std::unique_ptr<TKvImportFromFile> AsFileImport(std::unique_ptr<TKvImportBaseComponent> Import);

} // namespace kv
