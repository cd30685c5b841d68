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

void TKvIDataFormats::PutInForce(TFormatSettings& Settings) const
{
    static constexpr std::string_view Orders[] = {"MDY", "DMY", "YMD", "YDM", "DYM", "MYD"}; // by ordinal
    Settings.ShortDateFormat.clear();
    for (const char Part : Orders[DateOrder]) {
        if (!Settings.ShortDateFormat.empty())
            Settings.ShortDateFormat += DateSeparator;
        switch (Part) {
        case 'Y': Settings.ShortDateFormat += FourDigitYear ? "yyyy" : "yy"; break;
        case 'M': Settings.ShortDateFormat += LeadingZerosInDate ? "MM" : "M"; break;
        default:  Settings.ShortDateFormat += LeadingZerosInDate ? "dd" : "d"; break;
        }
    }
    Settings.DateSeparator = DateSeparator;
    Settings.TimeSeparator = TimeSeparator;
    Settings.ThousandSeparator = ThousandSeparator;
    Settings.DecimalSeparator = DecimalSeparator;
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
