// Kvi2txtKind - text files as a kind of source.
#pragma once

#include "KviSourceKind.h"

namespace kv {

const TKvISourceKind& TextSourceKind();

} // namespace kv
