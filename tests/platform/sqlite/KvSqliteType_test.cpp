#include "KvSqliteType.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string_view>

namespace kv {

namespace {

struct TTypeRow
{
    std::string_view Declared;
    TFieldType Field;
    int Size;
    TSQLiteAffinity Affinity;
};

std::ostream& operator<<(std::ostream& Out, const TTypeRow& Row)
{
    return Out << "'" << Row.Declared << "'";
}

class KvSqliteTypeReads : public testing::TestWithParam<TTypeRow> {};

TEST_P(KvSqliteTypeReads, FieldSizeAndAffinity)
{
    const auto Type = ReadDeclaredType(GetParam().Declared);
    EXPECT_EQ(Type.Field, GetParam().Field);
    EXPECT_EQ(Type.Size, GetParam().Size);
    EXPECT_EQ(Type.Affinity, GetParam().Affinity);
}

INSTANTIATE_TEST_SUITE_P(KnownNames, KvSqliteTypeReads, testing::Values(
    TTypeRow{"INTEGER", ftLargeint, 0, saInteger},
    TTypeRow{"int", ftLargeint, 0, saInteger},
    TTypeRow{"INT(11) UNSIGNED", ftLargeint, 0, saInteger},
    TTypeRow{"UNSIGNED BIG INT", ftLargeint, 0, saInteger},
    TTypeRow{"BIGINT", ftLargeint, 0, saInteger},
    TTypeRow{"INT8", ftLargeint, 0, saInteger},
    TTypeRow{"SMALLINT", ftSmallint, 0, saInteger},
    TTypeRow{"INT2", ftSmallint, 0, saInteger},
    TTypeRow{"BOOLEAN", ftBoolean, 0, saNumeric},
    TTypeRow{"Bool", ftBoolean, 0, saNumeric},
    TTypeRow{"BIT", ftBoolean, 0, saNumeric},
    TTypeRow{"REAL", ftFloat, 0, saReal},
    TTypeRow{"FLOAT", ftFloat, 0, saReal},
    TTypeRow{"double  precision", ftFloat, 0, saReal},
    TTypeRow{"DECIMAL(10,2)", ftBCD, 0, saNumeric},
    TTypeRow{"NUMERIC", ftBCD, 0, saNumeric},
    TTypeRow{"MONEY", ftCurrency, 0, saNumeric},
    TTypeRow{"CURRENCY", ftCurrency, 0, saNumeric},
    TTypeRow{"DATE", ftDate, 0, saNumeric},
    TTypeRow{"TIME", ftTime, 0, saNumeric},
    TTypeRow{"DATETIME", ftDateTime, 0, saNumeric},
    TTypeRow{"TIMESTAMP", ftDateTime, 0, saNumeric},
    TTypeRow{"CHAR(3)", ftString, 3, saText},
    TTypeRow{"VARCHAR ( 20 )", ftString, 20, saText},
    TTypeRow{"NATIVE  CHARACTER(70)", ftString, 70, saText},
    TTypeRow{"NVARCHAR", ftString, 0, saText},
    TTypeRow{"TEXT", ftString, 0, saText},
    TTypeRow{"TEXT(15)", ftString, 15, saText},
    TTypeRow{"CLOB", ftMemo, 0, saText},
    TTypeRow{"MEMO", ftMemo, 0, saNumeric},
    TTypeRow{"STRING", ftString, 0, saNumeric},
    TTypeRow{"BLOB", ftBlob, 0, saBlob},
    TTypeRow{"BINARY(16)", ftVarBytes, 16, saNumeric},
    TTypeRow{"VARBINARY(8)", ftVarBytes, 8, saNumeric},
    TTypeRow{"VARBINARY", ftBlob, 0, saNumeric},
    TTypeRow{"GUID", ftString, 38, saNumeric},
    TTypeRow{"UUID", ftString, 38, saNumeric}));

INSTANTIATE_TEST_SUITE_P(ByAffinity, KvSqliteTypeReads, testing::Values(
    TTypeRow{"", ftVariant, 0, saBlob},
    TTypeRow{"POINT", ftLargeint, 0, saInteger},
    TTypeRow{"CHARINT", ftLargeint, 0, saInteger},
    TTypeRow{"DOUBLEISH", ftFloat, 0, saReal},
    TTypeRow{"LONGTEXT", ftString, 0, saText},
    TTypeRow{"TINYBLOB", ftBlob, 0, saBlob},
    TTypeRow{"JSON", ftVariant, 0, saNumeric},
    TTypeRow{"(5)", ftVariant, 0, saNumeric},
    TTypeRow{"VARCHAR(-1)", ftString, 0, saText},
    TTypeRow{"VARCHAR(99999999999)", ftString, 0, saText},
    TTypeRow{"VARCHAR(max)", ftString, 0, saText}));

TEST(KvSqliteType, AnyKeepsEveryValueInStrictTablesOnly)
{
    EXPECT_EQ(ReadStrictType("any").Affinity, saBlob);
    EXPECT_EQ(ReadStrictType("any").Field, ftVariant);
    EXPECT_EQ(ReadDeclaredType("ANY").Affinity, saNumeric);
    EXPECT_EQ(ReadStrictType("INT").Field, ftLargeint);
}

TEST(KvSqliteType, DecimalsHaveTheDigitsThatAreDeclared)
{
    struct TRow
    {
        const char* Declared;
        int Precision, Scale;
    };
    for (const auto& [Declared, Precision, Scale] :
         {TRow{"DECIMAL(10,2)", 10, 2}, TRow{"numeric ( 5 , 0 )", 5, 0}, TRow{"DEC(7)", 7, 0},
          TRow{"NUMERIC", 0, 0}, TRow{"DECIMAL(2,5)", 0, 0}, TRow{"VARCHAR(20)", 0, 0},
          TRow{"FLOAT(10,2)", 0, 0}})
    {
        EXPECT_EQ(ReadDeclaredType(Declared).Precision, Precision) << Declared;
        EXPECT_EQ(ReadDeclaredType(Declared).Scale, Scale) << Declared;
    }
}

} // namespace

} // namespace kv
