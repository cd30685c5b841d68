// Kvi2oleKind - Access databases as a kind of source.
#pragma once

#include "KviSourceKind.h"

namespace kv {

const TKvISourceKind& AccessSourceKind();

} // namespace kv
