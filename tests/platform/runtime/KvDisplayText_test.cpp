#include "KvDisplayText.h"

#include <gtest/gtest.h>

#include "KvCodePage.h"

namespace kv {

namespace {

class KvDisplayText : public testing::Test
{
protected:
    ~KvDisplayText() override
    {
        SetAnsiCodePage("UTF-8");
        SetLegacyCodePage("windows-1252");
    }
};

TEST_F(KvDisplayText, Utf8PassesUnchanged)
{
    EXPECT_EQ(ToDisplay("Łódź"), "Łódź");
}

TEST_F(KvDisplayText, WhatIsNoUtf8IsOfTheLegacyPage)
{
    SetLegacyCodePage("windows-1250");
    EXPECT_EQ(ToDisplay("\xA3\xF3" "d\x9F"), "Łódź");
}

TEST_F(KvDisplayText, TextOfMsDosIsOfTheOemPage)
{
    EXPECT_EQ(ToDisplay("K\x94ln", true), "Köln");
    EXPECT_EQ(ToDisplay("Köln", false), "Köln");
}

TEST_F(KvDisplayText, WhatAUserTypesBecomesTextOfTheProcess)
{
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(FromDisplay("Köln"), "K\xF6ln");
    EXPECT_EQ(ToDisplay("K\xF6ln"), "Köln");
}

} // namespace

} // namespace kv
