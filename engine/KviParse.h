// KviParse - from what a source gives to a value of the kind of a field, under the settings of an import.
#pragma once

#include "KvField.h"
#include "KvVariant.h"
#include "KviTypes.h"

namespace kv {

class TKvImportBaseComponent;

/// Turns a value that is not blank into one of another kind; where it has no meaning there it stays as it is,
/// and the field's assignment decides.
using TKvIParse = void (*)(TVariant& Value, const TKvImportBaseComponent& Import);

/// How a value gets the kind of a field's type. None where all values stay: bytes in any case, texts and
/// integers unless an extension concerns them.
TKvIParse ParserFor(TFieldType Type, TKvIRunExtensions Extensions);

} // namespace kv
