#include "KvIsoDate.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "KvFormatSettings.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

class KvIsoDate : public testing::Test
{
protected:
    KvIsoDate() { FormatSettings() = GermanSettings(); }

private:
    TKvSettingsGuard Guard;
};

TEST_F(KvIsoDate, WritesTheSameWhateverTheSettings)
{
    EXPECT_EQ(DateToIso({45351.75}), "2024-02-29");
    EXPECT_EQ(TimeToIso({45351.75}), "18:00:00");
    EXPECT_EQ(DateTimeToIso({45351.75}), "2024-02-29 18:00:00");
    EXPECT_EQ(DateTimeToIso({45351}), "2024-02-29 00:00:00");
    char Buffer[IsoTextMax];
    EXPECT_EQ(WriteIsoDate({45351}, Buffer), "2024-02-29");
    EXPECT_EQ(WriteIsoTime({0.5}, Buffer).data(), Buffer);
    EXPECT_EQ(WriteIsoDateTime({2958465 + 86399999.0 / 86400000}, Buffer), "9999-12-31 23:59:59.999");
}

TEST_F(KvIsoDate, ReadsTheSameWhateverTheSettings)
{
    const std::pair<const char*, const char*> Rows[] = {
        {"2024-02-29", "2024-02-29 00:00:00"},
        {"18:00:00", "1899-12-30 18:00:00"},
        {"2024-02-29 18:00:00", "2024-02-29 18:00:00"},
        {"2024-02-29T18:00:00.5", "2024-02-29 18:00:00.500"},
        {"0001-01-01", "0001-01-01 00:00:00"},
        {"24-02-29", "-"},
        {"2024-2-29", "-"},
        {"2024-02-9", "-"},
        {"2023-02-29", "-"},
        {"2024/02/29", "-"},
        {"8:00:00", "-"},
        {"08:00 AM", "-"},
        {"2024-02-29 24:00:00", "-"},
        {"2024-02-29Z", "-"},
        {"20240229", "-"},
        {"", "-"},
    };
    for (const auto& [Text, Value] : Rows) {
        const auto Read = TryIsoToDateTime(Text);
        EXPECT_EQ(Read ? DateTimeToIso(*Read) : "-", Value) << Text;
    }
}

} // namespace
} // namespace kv
