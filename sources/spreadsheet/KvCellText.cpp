#include "KvCellText.h"

#include "KvCalendar.h"
#include "KvException.h"

namespace kv {

bool HasText(const TVariant& Value)
{
    if (Value.Kind() != vkDateTime)
        return true;
    try {
        SplitDateTime(Value.DateTime());
        return true;
    }
    catch (const EConvertError&) {
        return false;
    }
}

std::string CellText(const TVariant& Value)
{
    return HasText(Value) ? Value.ToText() : TVariant(Value.DateTime().Days).ToText();
}

} // namespace kv
