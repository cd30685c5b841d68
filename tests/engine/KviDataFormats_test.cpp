#include "KviDataFormats.h"

#include "KvException.h"
#include "KvTestRun.h"

namespace kv {

namespace {

using testing::ElementsAre;

/// All nine values as text, in the order of publication.
std::vector<std::string> All(const TKvIDataFormats& Formats)
{
    std::vector<std::string> Result;
    for (const auto& Property : Formats.PublishedProperties())
        Result.push_back(Property.Get(Formats).ToText());
    return Result;
}

struct KviDataFormats : testing::Test
{
    TKnownFormats Known;
};

TEST_F(KviDataFormats, StartAsTheProcessWritesNumbersAndDates)
{
    FormatSettings().DateSeparator = '.';
    FormatSettings().TimeSeparator = '-';
    FormatSettings().ThousandSeparator = '\'';
    FormatSettings().DecimalSeparator = ',';
    FormatSettings().ShortDateFormat = "d.M.yyyy";
    EXPECT_THAT(All(TKvIDataFormats()),
                ElementsAre("0", ".", "-", "True", "False", "'", ",", "True", "False"));
}

TEST_F(KviDataFormats, YearAndZerosComeFromTheShortDateFormat)
{
    const auto With = [](const char* Format) {
        FormatSettings().ShortDateFormat = Format;
        const TKvIDataFormats Formats;
        return std::pair(Formats.FourDigitYear, Formats.LeadingZerosInDate);
    };
    EXPECT_EQ(With("dd/MM/yyyy"), std::pair(true, true));
    EXPECT_EQ(With("d/M/yy"), std::pair(false, false));
    EXPECT_EQ(With("dd/MM/yy"), std::pair(false, true));
    EXPECT_EQ(With("M/d/yyyy"), std::pair(true, false));
}

TEST_F(KviDataFormats, LaterChangesOfTheProcessDoNotReachThem)
{
    const TKvIDataFormats Formats;
    FormatSettings().DecimalSeparator = ';';
    EXPECT_EQ(Formats.DecimalSeparator, '.');
}

TEST_F(KviDataFormats, AssignCopiesAllNine)
{
    TKvIDataFormats From, To;
    From.DateOrder = doYDM;
    From.DateSeparator = '1';
    From.TimeSeparator = '2';
    From.FourDigitYear = !From.FourDigitYear;
    From.LeadingZerosInDate = !From.LeadingZerosInDate;
    From.ThousandSeparator = '3';
    From.DecimalSeparator = '4';
    From.BooleanTrue = "Yes";
    From.BooleanFalse = "No";
    To.Assign(From);
    EXPECT_EQ(All(To), All(From));
    EXPECT_THAT(All(To), ElementsAre("3", "1", "2", "False", "True", "3", "4", "Yes", "No"));
}

TEST_F(KviDataFormats, AssignRefusesOtherObjects)
{
    TKvIDataFormats Formats;
    try {
        Formats.Assign(TStrings());
        FAIL() << "assigned";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message, "Cannot assign a TStrings to a TKvIDataFormats.");
    }
}

TEST_F(KviDataFormats, PublishesItsPropertiesInDeclarationOrder)
{
    std::vector<std::string> Names;
    for (const auto& Property : TKvIDataFormats().PublishedProperties())
        Names.emplace_back(Property.Name);
    EXPECT_THAT(Names, ElementsAre("DateOrder", "DateSeparator", "TimeSeparator", "FourDigitYear",
                                   "LeadingZerosInDate", "ThousandSeparator", "DecimalSeparator",
                                   "BooleanTrue", "BooleanFalse"));
}

} // namespace

} // namespace kv
