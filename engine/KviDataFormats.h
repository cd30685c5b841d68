// KviDataFormats - how a source writes dates, numbers and truth.
#pragma once

#include <string>

#include "KvComponent.h"
#include "KviTypes.h"

namespace kv {

struct TFormatSettings;

/// Separators start as the process's format settings have them when the object is made.
class TKvIDataFormats final : public TPersistent
{
public:
    TKvIDataFormats();

    std::string_view ClassName() const override { return "TKvIDataFormats"; }
    /// Copies all nine.
    void Assign(const TPersistent& Source) override;
    TPublishedProperties PublishedProperties() const override;

    /// Lets the process read and show numbers and dates so.
    void PutInForce(TFormatSettings& Settings) const;

    // Kept for specifications and for users. Reading a date follows the process's short date format, which
    // these make only with rxFormatsInForce.
    TKvIDateOrder DateOrder = doMDY;
    bool FourDigitYear;
    bool LeadingZerosInDate;

    char DateSeparator;
    char TimeSeparator;
    char ThousandSeparator;                         ///< Removed from numbers wherever it stands.
    char DecimalSeparator;
    std::string BooleanTrue = "True";               ///< Compared to the letter.
    std::string BooleanFalse = "False";
};

} // namespace kv
