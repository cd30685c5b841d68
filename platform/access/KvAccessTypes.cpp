#include "KvAccessTypes.h"

#include <string_view>

namespace kv {

namespace {

std::string_view NameOf(TAccessFieldType Type)
{
    switch (Type) {
    case afBoolean:  return "Yes/No";
    case afByte:     return "Byte";
    case afInteger:  return "Integer";
    case afLong:     return "Long Integer";
    case afCurrency: return "Currency";
    case afSingle:   return "Single";
    case afDouble:   return "Double";
    case afDateTime: return "Date/Time";
    case afBinary:   return "Binary";
    case afText:     return "Text";
    case afOle:      return "OLE Object";
    case afMemo:     return "Memo";
    case afGuid:     return "Replication ID";
    case afDecimal:  return "Decimal";
    case afComplex:  return "Multiple Values";
    case afBigInt:   return "Large Number";
    }
    return {};
}

} // namespace

bool IsReadable(TAccessFieldType Type)
{
    return Type != afComplex && !NameOf(Type).empty();
}

std::string UnreadableType(TAccessFieldType Type)
{
    return Type == afComplex ? "attachments and multiple values cannot be read"
                             : "values of type " + std::to_string(Type) + " cannot be read";
}

std::string AccessTypeText(const TAccessField& Field)
{
    std::string Text(NameOf(Field.Type));
    if (Text.empty())
        return "Type " + std::to_string(Field.Type);
    if (Field.Type == afDecimal)
        return Text + " (" + std::to_string(Field.Precision) + ", " + std::to_string(Field.Scale) + ")";
    if (Field.Type == afText || Field.Type == afBinary)
        return Text + " (" + std::to_string(Field.Size) + ")";
    return Text;
}

} // namespace kv
