// KvSourceFactory - the component for a kind of source or of a class, for programs that learn at run time
// which it is.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "Kvibase.h"

namespace kv {

class TIniFile;

/// A new component that imports sources of that kind, with its defaults. An `Owner` that outlives the
/// pointer may be given; it deletes the component when the pointer was released.
/// Raises Exception "There is no import of the kind %d" for a number that is none of the kinds.
std::unique_ptr<TKvImportBaseComponent> CreateImport(TTableTypeImport TableType, TComponent* Owner = nullptr);

/// The classes of components that import, those of files first.
std::span<const std::string_view> ImportClassNames();
/// A new component of that class, compared without regard to case. Owned as above.
/// Raises Exception "There is no import of the class '%s'" for a name that is none of ImportClassNames().
std::unique_ptr<TKvImportBaseComponent> CreateImport(std::string_view ClassName, TComponent* Owner = nullptr);
/// What such a component publishes, with the defaults of a new one. For the objects that are a part of it,
/// such as DataFormats, WithDefaults of those of a new component tells the same.
TPublishedProperties ImportProperties(std::string_view ClassName);

/// The component that the specification `FileName` is about, with its settings loaded; it only needs a
/// destination. Raises what CreateImport and LoadSpecification raise, and EConvertError when the file
/// does not say what kind of source it is about.
std::unique_ptr<TKvImportBaseComponent> LoadImport(const std::string& FileName);
/// The same from a file that the caller has opened; no event is fired.
std::unique_ptr<TKvImportBaseComponent> LoadImport(const TIniFile& File);

} // namespace kv
