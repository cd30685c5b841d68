// Kvi2bdeKinds - table files as kinds of sources.
#pragma once

#include "KviSourceKind.h"

namespace kv {

const TKvISourceKind& DbaseSourceKind();
const TKvISourceKind& ParadoxSourceKind();

} // namespace kv
