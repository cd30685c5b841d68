// KvSourceFactory - the component for a kind of source, for programs that learn the kind at run time.
#pragma once

#include <memory>
#include <string>

#include "Kvibase.h"

namespace kv {

class TIniFile;

/// A new component that imports sources of that kind, with its defaults. An `Owner` that outlives the
/// pointer may be given; it deletes the component when the pointer was released.
/// Raises Exception "There is no import of the kind %d" for a number that is none of the kinds.
std::unique_ptr<TKvImportBaseComponent> CreateImport(TTableTypeImport TableType, TComponent* Owner = nullptr);

/// The component that the specification `FileName` is about, with its settings loaded; it only needs a
/// destination. Raises what CreateImport and LoadSpecification raise, and EConvertError when the file
/// does not say what kind of source it is about.
std::unique_ptr<TKvImportBaseComponent> LoadImport(const std::string& FileName);
/// The same from a file that the caller has opened; no event is fired.
std::unique_ptr<TKvImportBaseComponent> LoadImport(const TIniFile& File);

} // namespace kv
