#include "KvDbaseLanguage.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvCodePage.h"

namespace kv {

TEST(KvDbaseLanguage, ABytesPageIsKnown)
{
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x01}), "437");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x02}), "850");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x03}), "1252");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x57}), "1252");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x64}), "852");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x7B}), "932");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0xC9}), "1251");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0xCC}), "1257");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x00}), "");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0xF0}), "");
}

TEST(KvDbaseLanguage, ThePagesCanBeConverted)
{
    for (int Byte = 0; Byte < 256; ++Byte) {
        const auto Page = CodePageOfDriver(static_cast<std::uint8_t>(Byte));
        // Kamenicky, Mazovia and Greek Macintosh are not known everywhere.
        if (Page.empty() || Page == "895" || Page == "620" || Page == "10006")
            continue;
        EXPECT_EQ(CodePageToUtf8("A1", Page), "A1") << Byte;
    }
}

TEST(KvDbaseLanguage, ANamesPageIsKnown)
{
    using TName = std::string_view;
    EXPECT_EQ(CodePageOfDriver(TName("DB437US0")), "437");
    EXPECT_EQ(CodePageOfDriver(TName("DB850DE0")), "850");
    EXPECT_EQ(CodePageOfDriver(TName("DB866RU0")), "866");
    EXPECT_EQ(CodePageOfDriver(TName("DBWINUS0")), "1252");
    EXPECT_EQ(CodePageOfDriver(TName("DBWINWE0")), "1252");
    EXPECT_EQ(CodePageOfDriver(TName("DBWINRU0")), "1251");
    EXPECT_EQ(CodePageOfDriver(TName("DBWINPL0")), "1250");
    EXPECT_EQ(CodePageOfDriver(TName("")), "");
    EXPECT_EQ(CodePageOfDriver(TName("DB")), "");
    EXPECT_EQ(CodePageOfDriver(TName("ASCII")), "");
}

} // namespace kv
