// KvSpreadSheetKinds - workbooks and worksheets as kinds of sources.
#pragma once

#include "KviSourceKind.h"

namespace kv {

const TKvISourceKind& ExcelSourceKind();
const TKvISourceKind& LotusSourceKind();
const TKvISourceKind& QuattroSourceKind();

} // namespace kv
