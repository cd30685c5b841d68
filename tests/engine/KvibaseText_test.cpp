#include "KvTestRun.h"

namespace kv {

namespace {

struct KvibaseText : testing::Test, TTestRun
{
};

TEST_F(KvibaseText, FieldDelimiterSetsItsCharacter)
{
    const std::pair<TKvIFieldDelimiter, char> Rows[] = {
        {fdNone, '\0'}, {fdTab, '\t'}, {fdSemicolon, ';'}, {fdComma, ','}, {fdSpace, ' '}};
    for (const auto& [Kind, Character] : Rows) {
        Import.SetFieldDelimiterCustom('|');
        Import.SetFieldDelimiter(Kind);
        EXPECT_EQ(Import.GetFieldDelimiter(), Kind);
        EXPECT_EQ(Import.GetFieldDelimiterCustom(), Character);
    }
}

TEST_F(KvibaseText, FieldDelimiterCharacterSetsItsKind)
{
    const std::pair<char, TKvIFieldDelimiter> Rows[] = {
        {'\0', fdNone}, {'\t', fdTab}, {';', fdSemicolon}, {',', fdComma}, {' ', fdSpace}, {'|', fdCustom}};
    for (const auto& [Character, Kind] : Rows) {
        Import.SetFieldDelimiterCustom(Character);
        EXPECT_EQ(Import.GetFieldDelimiter(), Kind);
        EXPECT_EQ(Import.GetFieldDelimiterCustom(), Character);
    }
}

TEST_F(KvibaseText, TextQualifierSetsItsCharacter)
{
    const std::pair<TKvITextQualifier, char> Rows[] = {{tqNone, '\0'}, {tqQuot, '"'}, {tqApos, '\''}};
    for (const auto& [Kind, Character] : Rows) {
        Import.SetTextQualifierCustom('|');
        Import.SetTextQualifier(Kind);
        EXPECT_EQ(Import.GetTextQualifier(), Kind);
        EXPECT_EQ(Import.GetTextQualifierCustom(), Character);
    }
}

TEST_F(KvibaseText, TextQualifierCharacterSetsItsKind)
{
    const std::pair<char, TKvITextQualifier> Rows[] = {{'\0', tqNone}, {'"', tqQuot}, {'\'', tqApos},
                                                       {'|', tqCustom}};
    for (const auto& [Character, Kind] : Rows) {
        Import.SetTextQualifierCustom(Character);
        EXPECT_EQ(Import.GetTextQualifier(), Kind);
        EXPECT_EQ(Import.GetTextQualifierCustom(), Character);
    }
}

TEST_F(KvibaseText, RecordSeparatorSetsItsCharacters)
{
    const std::pair<TKvIRecordSeparator, const char*> Rows[] = {{rsCRLF, "\r\n"}, {rsCR, "\r"}, {rsLF, "\n"}};
    for (const auto& [Kind, Characters] : Rows) {
        Import.SetRecordSeparatorCustom("||");
        Import.SetRecordSeparator(Kind);
        EXPECT_EQ(Import.GetRecordSeparator(), Kind);
        EXPECT_EQ(Import.GetRecordSeparatorCustom(), Characters);
    }
}

TEST_F(KvibaseText, RecordSeparatorCharactersSetTheirKind)
{
    const std::pair<const char*, TKvIRecordSeparator> Rows[] = {
        {"\r\n", rsCRLF}, {"\r", rsCR}, {"\n", rsLF}, {"\n\r", rsCustom}, {"~", rsCustom}, {"", rsCustom}};
    for (const auto& [Characters, Kind] : Rows) {
        Import.SetRecordSeparatorCustom(Characters);
        EXPECT_EQ(Import.GetRecordSeparator(), Kind);
        EXPECT_EQ(Import.GetRecordSeparatorCustom(), Characters);
    }
}

TEST_F(KvibaseText, CustomKindsKeepWhatWasSet)
{
    Import.SetFieldDelimiterCustom('|');
    Import.SetFieldDelimiter(fdComma);
    Import.SetFieldDelimiter(fdCustom);
    EXPECT_EQ(Import.GetFieldDelimiterCustom(), ',');
    EXPECT_EQ(Import.GetFieldDelimiter(), fdCustom);

    Import.SetTextQualifier(tqApos);
    Import.SetTextQualifier(tqCustom);
    EXPECT_EQ(Import.GetTextQualifierCustom(), '\'');
    EXPECT_EQ(Import.GetTextQualifier(), tqCustom);

    Import.SetRecordSeparator(rsLF);
    Import.SetRecordSeparator(rsCustom);
    EXPECT_EQ(Import.GetRecordSeparatorCustom(), "\n");
    EXPECT_EQ(Import.GetRecordSeparator(), rsCustom);
}

} // namespace

} // namespace kv
