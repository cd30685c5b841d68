#include "KvDbaseLanguage.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvCodePage.h"

namespace kv {

TEST(KvDbaseLanguage, ABytesPageIsKnown)
{
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x01}), "437");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x02}), "850");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x03}), "1252");
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x57}), "") << "the page of some Windows";
    EXPECT_EQ(CodePageOfDriver(std::uint8_t{0x58}), "1252");
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
        if (!Page.empty()) {
            EXPECT_EQ(CodePageToUtf8("A1", Page), "A1") << Byte;
        }
    }
}

TEST(KvDbaseLanguage, ALabelsPageIsKnown)
{
    for (const auto& [Label, Page] : std::vector<std::pair<std::string, std::string>>{
             {"UTF-8", "UTF-8"}, {"utf-8\r\n", "utf-8"}, {"1252", "1252"}, {"ANSI 1251", "1251"},
             {"CP1250", "1250"}, {"cp852 ", "852"}, {"OEM 437", "437"}, {"88592", "ISO-8859-2"},
             {"8859-15", "ISO-8859-15"}, {"ISO 88595", "ISO-8859-5"}, {"ISO-8859-7", "ISO-8859-7"},
             {"BIG5", "BIG5"}, {"Mazovia", "Mazovia"}, {"", ""}, {"SYSTEM", ""}, {"1", ""}, {"8859", ""}})
        EXPECT_EQ(CodePageOfLabel(Label), Page) << Label;
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
