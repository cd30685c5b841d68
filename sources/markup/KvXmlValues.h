// KvXmlValues - values of the types that the FIELDS section of a data packet declares, as packets write them
// whatever the formats of a run are.
//
//   date     := yyyymmdd
//   time     := hh ":" mm ":" ss [["."] milliseconds:3]
//   dateTime := date [("T" | " ") time]
//   bin.hex  := base64
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KvField.h"
#include "KvVariant.h"

namespace kv {

// Each answers nothing for a text that is written otherwise.

/// A value of the type ftDate, ftTime or ftDateTime.
std::optional<TDateTime> PacketDateTime(std::string_view Text, TFieldType Type);
std::optional<bool> PacketBoolean(std::string_view Text);
/// Puts bytes into `Bytes`; false for a text that is no base64.
bool PacketBytes(std::string_view Text, std::string& Bytes);

} // namespace kv
