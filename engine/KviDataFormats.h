// KviDataFormats - how a source writes dates, numbers and truth.
#pragma once

#include <string>

#include "KvComponent.h"
#include "KviTypes.h"

namespace kv {

/// Separators start as the process's format settings have them when the object is made.
class TKvIDataFormats final : public TPersistent
{
public:
    TKvIDataFormats();

    std::string_view ClassName() const override { return "TKvIDataFormats"; }
    /// Copies all nine.
    void Assign(const TPersistent& Source) override;
    TPublishedProperties PublishedProperties() const override;

    // Kept for specifications and for users. Reading a date follows the process's short date format.
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
