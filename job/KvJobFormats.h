// KvJobFormats - puts the formats of a job in force.
#pragma once

#include <string>

#include "KvJobSettings.h"

namespace kv {

class TKvIDataFormats;

/// As settings and reports name an order: "dmy".
std::string NameOfDateOrder(TKvIDateOrder Order);

/// What was not given becomes that of `From`, but for the words of truth.
void TakeFormats(const TKvIDataFormats& From, TJobFormats& Formats);
/// Sets those of a component.
void SetFormats(const TJobFormats& Formats, TKvIDataFormats& Target);
/// Puts the process-wide code pages in force. Raises EJobRefused for an unknown one.
void UseCodePages(const TJobFormats& Formats);
/// The same with the formats. Raises EJobRefused too for a date order in which dates cannot be read, and when
/// the decimal and the thousand separator are the same.
void UseFormats(const TJobFormats& Formats);

} // namespace kv
