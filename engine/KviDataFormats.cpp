#include "KviDataFormats.h"

#include <string_view>

#include "KvFormatSettings.h"
#include "KvPublish.h"

namespace kv {

namespace {

constexpr std::string_view DateOrderNames[] = {"doMDY", "doDMY", "doYMD", "doYDM", "doDYM", "doMYD"};

} // namespace

TKvIDataFormats::TKvIDataFormats()
    : FourDigitYear(FormatSettings().ShortDateFormat.find("yyyy") != std::string::npos),
      LeadingZerosInDate(FormatSettings().ShortDateFormat.find("dd") != std::string::npos),
      DateSeparator(FormatSettings().DateSeparator),
      TimeSeparator(FormatSettings().TimeSeparator),
      ThousandSeparator(FormatSettings().ThousandSeparator),
      DecimalSeparator(FormatSettings().DecimalSeparator)
{
}

void TKvIDataFormats::Assign(const TPersistent& Source)
{
    const auto* const Other = dynamic_cast<const TKvIDataFormats*>(&Source);
    if (!Other)
        return TPersistent::Assign(Source);
    DateOrder = Other->DateOrder;
    DateSeparator = Other->DateSeparator;
    TimeSeparator = Other->TimeSeparator;
    FourDigitYear = Other->FourDigitYear;
    LeadingZerosInDate = Other->LeadingZerosInDate;
    ThousandSeparator = Other->ThousandSeparator;
    DecimalSeparator = Other->DecimalSeparator;
    BooleanTrue = Other->BooleanTrue;
    BooleanFalse = Other->BooleanFalse;
}

TPublishedProperties TKvIDataFormats::PublishedProperties() const
{
    using T = TKvIDataFormats;
    return {Publish("DateOrder", &T::DateOrder, DateOrderNames),
            Publish("DateSeparator", &T::DateSeparator),
            Publish("TimeSeparator", &T::TimeSeparator),
            Publish("FourDigitYear", &T::FourDigitYear),
            Publish("LeadingZerosInDate", &T::LeadingZerosInDate),
            Publish("ThousandSeparator", &T::ThousandSeparator),
            Publish("DecimalSeparator", &T::DecimalSeparator),
            Publish("BooleanTrue", &T::BooleanTrue),
            Publish("BooleanFalse", &T::BooleanFalse)};
}

} // namespace kv
