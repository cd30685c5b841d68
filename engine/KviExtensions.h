// KviExtensions - the rules of today that a component publishes in sets, and how to have them all.
#pragma once

namespace kv {

class TKvImportBaseComponent;

/// Turns on every element of the set properties of `Component` whose names end in "Extensions".
void TurnOnExtensions(TKvImportBaseComponent& Component);

} // namespace kv
