// KvAccessTypes - the fields of an Access table.
#pragma once

#include <cstdint>
#include <string>

namespace kv {

/// The type of a field, numbered as the files have it.
enum TAccessFieldType : std::uint8_t {
    afBoolean = 1,
    afByte = 2,                                     ///< 0 to 255
    afInteger = 3,                                  ///< 16 bits
    afLong = 4,                                     ///< 32 bits
    afCurrency = 5,
    afSingle = 6,
    afDouble = 7,
    afDateTime = 8,
    afBinary = 9,                                   ///< Up to 510 bytes.
    afText = 10,                                    ///< Up to 255 characters.
    afOle = 11,                                     ///< Bytes without limit.
    afMemo = 12,                                    ///< Text without limit.
    afGuid = 15,
    afDecimal = 16,
    afComplex = 18,                                 ///< Attachments or several values, in other tables.
    afBigInt = 19                                   ///< 64 bits
};

struct TAccessField
{
    std::string Name;                               ///< In the process's code page.
    TAccessFieldType Type = afText;                 ///< May be a number that is none of the above.
    std::uint32_t Size = 0;                         ///< Characters of texts, bytes of others; 0: no limit.
    std::uint8_t Precision = 0, Scale = 0;          ///< Of afDecimal: digits, and those after the point.
};

/// False for types whose values are always refused.
bool IsReadable(TAccessFieldType Type);
/// Why values of such a type are.
std::string UnreadableType(TAccessFieldType Type);

/// The type as Access names it, with its size: "Text (50)", "Decimal (18, 2)", "Long Integer".
std::string AccessTypeText(const TAccessField& Field);

} // namespace kv
