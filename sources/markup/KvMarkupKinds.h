// KvMarkupKinds - files of tags as kinds of sources.
#pragma once

#include "KviSourceKind.h"

namespace kv {

const TKvISourceKind& HtmlSourceKind();
const TKvISourceKind& XmlSourceKind();

} // namespace kv
