#include "KvByteCursor.h"

#include <string>

#include "KvException.h"
#include "KvText.h"

namespace kv {

void TKvByteCursor::RaiseEnd() const
{
    const auto End = std::to_string(FStart + FBytes.size());
    throw EFormatError(FormatText("Unexpected end of data at offset %d", {End}));
}

} // namespace kv
