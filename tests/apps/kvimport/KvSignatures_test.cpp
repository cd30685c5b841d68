#include "KvSignatures.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

namespace kv {

namespace {

struct TBeginning
{
    const char* Kind;                               // empty: none of them
    std::string Bytes;
};

const TBeginning Beginnings[] = {
    {"html", "<!doctype HTML>"},
    {"html", "\xEF\xBB\xBF\r\n<HTML lang=de>"},
    {"", "<table><tr><td>"},                        // also a piece of anything else
    {"xml", "<DATAPACKET Version=\"2.0\">"},
    {"xml", "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<DATAPACKET>"},
    {"", "<?xml version=\"1.0\"?><html>"},
    {"", "<?xml version=\"1.0\""},
    {"xls", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"},
    {"xls", "\x09\x08\x10\x00\x00\x06"s},
    {"wks", "\0\0\x02\0\x06\x04"s},
    {"wks", "\0\0\x1A\0\0\x10"s},
    {"quattro", "\0\0\x02\0\x20\x51"s},
    {"", "\0\0\x02\0\x99\x99"s},
    {"access", "\0\1\0\0Standard Jet DB\0"s},
    {"access", "\0\1\0\0Standard ACE DB\0"s},
    {"", "\0\1\0\0Standard Jet"s},
    {"sqlite", "SQLite format 3\0\x10"s},
    {"", "ID,CITY"},
    {"", ""}};

} // namespace

TEST(KvSignatures, EachKindKnowsItsFilesAndNoOther)
{
    const std::pair<const char*, bool (*)(std::string_view)> Kinds[] = {
        {"html", BeginsLikeHtml}, {"xml", BeginsLikeXml},         {"xls", BeginsLikeXls},
        {"wks", BeginsLikeWks},   {"quattro", BeginsLikeQuattro}, {"access", BeginsLikeAccess},
        {"sqlite", BeginsLikeSqlite}};
    for (const auto& Beginning : Beginnings)
        for (const auto& [Kind, Begins] : Kinds)
            EXPECT_EQ(Begins(Beginning.Bytes), Kind == std::string(Beginning.Kind))
                << Kind << ": " << Beginning.Bytes;
}

TEST(KvSignatures, WhatHasBytesOfZeroIsNoTextWithoutAMark)
{
    EXPECT_TRUE(BeginsLikeText(""));
    EXPECT_TRUE(BeginsLikeText("ID,CITY\r\n"));
    EXPECT_TRUE(BeginsLikeText("\xFF\xFEI\0D\0"s));
    EXPECT_FALSE(BeginsLikeText("I\0D\0"s));
}

} // namespace kv
