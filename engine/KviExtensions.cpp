#include "KviExtensions.h"

#include <cstdint>

#include "Kvibase.h"

namespace kv {

void TurnOnExtensions(TKvImportBaseComponent& Component)
{
    for (const auto& Property : Component.PublishedProperties())
        if (Property.Kind == pkSet && Property.Name.ends_with("Extensions"))
            Property.Set(Component, (std::int64_t{1} << Property.Names.size()) - 1);
}

} // namespace kv
