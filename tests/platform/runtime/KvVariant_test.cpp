#include "KvVariant.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <string>
#include <type_traits>
#include <vector>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

static_assert(sizeof(TVariant) == 32);
static_assert(std::is_nothrow_move_constructible_v<TVariant>);
static_assert(!std::is_constructible_v<TVariant, void*>, "a pointer is no boolean");
static_assert(!std::is_constructible_v<TVariant, TVariantKind>, "an enumeration has no kind of its own");

const std::string Short(TVariant::ShortTextMax, 's');
const std::string Long(TVariant::ShortTextMax + 1, 'l');

/// True when the characters of the text stand in the variant itself.
bool IsInside(const TVariant& Value)
{
    const auto* const Begin = reinterpret_cast<const char*>(&Value);
    return std::less_equal<>()(Begin, Value.Text().data()) &&
           std::less<>()(Value.Text().data(), Begin + sizeof Value);
}

TVariant ArrayOf(std::initializer_list<TVariant> Elements, int Low = 0)
{
    auto Result = TVariant::Array(Low, Low + static_cast<int>(Elements.size()) - 1);
    for (const auto& Element : Elements)
        Result[Low++] = Element;
    return Result;
}

TEST(KvVariant, IsEmptyUntilSet)
{
    const TVariant Value;
    EXPECT_EQ(Value.Kind(), vkEmpty);
    EXPECT_FALSE(Value.HasValue());
    EXPECT_EQ(Value.Text(), "");
}

TEST(KvVariant, TakesItsKindFromTheValue)
{
    EXPECT_EQ(TVariant(Null).Kind(), vkNull);
    EXPECT_EQ(TVariant(true).Kind(), vkBoolean);
    EXPECT_EQ(TVariant(7).Kind(), vkInteger);
    EXPECT_EQ(TVariant(std::uint32_t{7}).Kind(), vkInteger);
    EXPECT_EQ(TVariant(7.0).Kind(), vkDouble);
    EXPECT_EQ(TVariant(7.0f).Kind(), vkDouble);
    EXPECT_EQ(TVariant(TCurrency{70000}).Kind(), vkCurrency);
    EXPECT_EQ(TVariant(TDateTime{7}).Kind(), vkDateTime);
    EXPECT_EQ(TVariant("7").Kind(), vkString);
    EXPECT_EQ(TVariant(std::string("7")).Kind(), vkString);
    EXPECT_EQ(TVariant::Array(0, 6).Kind(), vkArray);
}

TEST(KvVariant, KeepsScalarValues)
{
    EXPECT_EQ(TVariant(std::numeric_limits<std::int64_t>::min()).Integer(),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(TVariant(-0.1).Double(), -0.1);
    EXPECT_EQ(TVariant(TCurrency{-1}).Currency(), TCurrency{-1});
    EXPECT_EQ(TVariant(TDateTime{-1.25}).DateTime(), TDateTime{-1.25});
    EXPECT_TRUE(TVariant(true).Boolean());
    EXPECT_FALSE(TVariant(false).Boolean());
}

TEST(KvVariant, KeepsTextOfThirtyBytesInside)
{
    EXPECT_TRUE(IsInside(TVariant("")));
    EXPECT_TRUE(IsInside(TVariant(Short)));
    EXPECT_FALSE(IsInside(TVariant(Long)));
    EXPECT_EQ(TVariant(Short).Text(), Short);
    EXPECT_EQ(TVariant(Long).Text(), Long);
}

TEST(KvVariant, KeepsAnyBytesOfText)
{
    const std::string Bytes("a\0\xFF\n", 4);
    EXPECT_EQ(TVariant(Bytes).Text(), Bytes);
    EXPECT_EQ(TVariant(Bytes + Long).Text(), Bytes + Long);
}

TEST(KvVariant, TakesTextAfterTextOfAnySize)
{
    const std::size_t Sizes[] = {0, 1, 29, 30, 31, 32, 100, 5000};
    for (const auto First : Sizes) {
        for (const auto Second : Sizes) {
            TVariant Value(std::string(First, 'a'));
            Value.SetText(std::string(Second, 'b'));
            EXPECT_EQ(Value.Text(), std::string(Second, 'b')) << First << " then " << Second;
            Value.SetText({});
            EXPECT_EQ(Value.Text(), "");
            EXPECT_TRUE(Value.IsString());
        }
    }
}

TEST(KvVariant, TakesPartsOfItsOwnText)
{
    std::string All(100, '.');
    std::iota(All.begin(), All.end(), ' ');
    for (const std::size_t Whole : {30, 31, 100})
        for (const std::size_t From : {0, 1, 29})
            for (const std::size_t Size : {0, 1, 29, 30, 31, 60}) {
                TVariant Value(All.substr(0, Whole));
                const auto Part = std::string(Value.Text().substr(From, Size));
                Value.SetText(Value.Text().substr(From, Size));
                EXPECT_EQ(Value.Text(), Part) << Whole << ' ' << From << ' ' << Size;
            }
}

TEST(KvVariant, UsesStorageOfLongTextAgain)
{
    TVariant Value(std::string(100, 'a'));
    const auto* const Storage = Value.Text().data();
    Value.SetText(std::string(31, 'b'));
    EXPECT_EQ(Value.Text().data(), Storage);
    Value.SetText("short");
    Value.SetText(std::string(100, 'c'));
    EXPECT_EQ(Value.Text().data(), Storage);
    Value = TVariant(std::string(50, 'd')).Text();
    EXPECT_EQ(Value.Text(), std::string(50, 'd'));
}

TEST(KvVariant, CopyOfATextUsesStorageAgain)
{
    TVariant Value(std::string(100, 'a'));
    const auto* const Storage = Value.Text().data();
    const TVariant Other(std::string(70, 'b'));
    Value = Other;
    EXPECT_EQ(Value.Text(), Other.Text());
    EXPECT_EQ(Value.Text().data(), Storage);
}

TEST(KvVariant, BorrowsTextWithoutACopy)
{
    for (const auto& Lender : {std::string(), Short, Long}) {
        const auto Value = TVariant::Borrow(Lender);
        EXPECT_TRUE(Value.IsString());
        EXPECT_EQ(Value.Text().data(), Lender.data());
        EXPECT_EQ(Value.Text(), Lender);
    }
}

TEST(KvVariant, CopyOfALoanOwnsItsText)
{
    for (const auto& Text : {Short, Long}) {
        auto Lender = std::make_unique<std::string>(Text);
        const auto Loan = TVariant::Borrow(*Lender);
        const TVariant Constructed(Loan);
        TVariant Assigned, Reused(std::string(100, 'r'));
        Assigned = Loan;
        Reused = Loan;
        const std::vector<TVariant> Elements(3, Loan);
        Lender.reset();
        EXPECT_EQ(Constructed.Text(), Text);
        EXPECT_EQ(Assigned.Text(), Text);
        EXPECT_EQ(Reused.Text(), Text);
        EXPECT_EQ(Elements[2].Text(), Text);
    }
}

TEST(KvVariant, MovingKeepsTheLoan)
{
    auto Loan = TVariant::Borrow(Long);
    const TVariant Moved(std::move(Loan));
    EXPECT_EQ(Moved.Text().data(), Long.data());
}

TEST(KvVariant, NeverWritesToALoan)
{
    const std::string Lender = Long;
    for (const auto& Text : {std::string(), Short, Long + Long, std::string(31, 'x')}) {
        auto Value = TVariant::Borrow(Lender);
        Value.SetText(Text);
        EXPECT_EQ(Value.Text(), Text);
        EXPECT_EQ(Lender, Long);
    }
}

TEST(KvVariant, TakesPartsOfItsLoan)
{
    for (const std::size_t From : {0, 1, 20}) {
        auto Value = TVariant::Borrow(Long);
        Value.SetText(Value.Text().substr(From));
        EXPECT_EQ(Value.Text(), Long.substr(From));
    }
}

TEST(KvVariant, IsEmptyAfterBeingMovedFrom)
{
    const std::vector<TVariant> Values{7, Short, Long, ArrayOf({1})};
    for (const auto& Value : Values) {
        TVariant Source(Value);
        TVariant Target(std::move(Source));
        EXPECT_TRUE(Source.IsEmpty());              // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(Target, Value);
        Source.SetText(Long);
        EXPECT_EQ(Source.Text(), Long);
    }
}

TEST(KvVariant, AnyKindReplacesAnyOther)
{
    const std::vector<TVariant> Values{{},           Null, 7,     2.5,  TCurrency{5},
                                       TDateTime{3}, true, Short, Long, ArrayOf({1, Long})};
    for (const auto& First : Values)
        for (const auto& Second : Values) {
            TVariant Copied(First), Moved(First);
            Copied = Second;
            Moved = TVariant(Second);
            EXPECT_EQ(Copied, Second);
            EXPECT_EQ(Copied.Kind(), Second.Kind());
            EXPECT_EQ(Moved, Second);
        }
}

TEST(KvVariant, AssignsToItself)
{
    for (TVariant Value : {TVariant(7), TVariant(Short), TVariant(Long), ArrayOf({1, Long})}) {
        const TVariant Before(Value);
        auto& Same = Value;
        Value = Same;
        EXPECT_EQ(Value, Before);
        Value = std::move(Same);
        EXPECT_EQ(Value, Before);
    }
}

TEST(KvVariant, TakesElementsOfItsOwnArray)
{
    const auto Elements = {TVariant(7), TVariant(Short), TVariant(Long), ArrayOf({1, Long})};
    for (const auto& Element : Elements) {
        auto Copied = ArrayOf({Element}), Moved = ArrayOf({Element}), Set = ArrayOf({Element});
        Copied = Copied[0];
        Moved = std::move(Moved[0]);
        Set.SetText(Set[0].Text());
        EXPECT_EQ(Copied, Element);
        EXPECT_EQ(Moved, Element);
        EXPECT_EQ(Set.Text(), Element.Text());
    }
}

TEST(KvVariant, ArraysKeepTheirBounds)
{
    auto Value = TVariant::Array(-1, 2);
    EXPECT_EQ(Value.LowBound(), -1);
    EXPECT_EQ(Value.HighBound(), 2);
    EXPECT_TRUE(Value[-1].IsEmpty());
    Value[2] = Long;
    EXPECT_EQ(Value[2].Text(), Long);
}

TEST(KvVariant, EmptyArrayEndsBeforeItBegins)
{
    const auto Value = TVariant::Array(1, 0);
    EXPECT_EQ(Value.LowBound(), 1);
    EXPECT_EQ(Value.HighBound(), 0);
}

TEST(KvVariant, CopiesArraysWithTheirElements)
{
    const auto Value = ArrayOf({1, Long, ArrayOf({2})});
    TVariant Copy(Value);
    Copy[1] = "changed";
    Copy[2][0] = 3;
    EXPECT_EQ(Value[1].Text(), Long);
    EXPECT_EQ(Value[2][0], TVariant(2));
}

TEST(KvVariant, RefusesIndexesOutsideTheBounds)
{
    auto Value = TVariant::Array(1, 2);
    for (const int Index : {0, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(MessageOf<EConvertError>([&] { Value[Index]; }), "Variant array index out of bounds");
        EXPECT_EQ(MessageOf<EConvertError>([&] { std::as_const(Value)[Index]; }),
                  "Variant array index out of bounds");
    }
}

TEST(KvVariant, RefusesBoundsOutOfOrder)
{
    EXPECT_EQ(MessageOf<EConvertError>([] { TVariant::Array(2, 0); }),
              "Variant array bounds are out of order");
}

TEST(KvVariant, OnlyArraysHaveElements)
{
    TVariant Value("text");
    EXPECT_EQ(MessageOf<EConvertError>([&] { Value[0]; }), "Variant is not an array");
    EXPECT_EQ(MessageOf<EConvertError>([&] { Value.LowBound(); }), "Variant is not an array");
    EXPECT_EQ(MessageOf<EConvertError>([&] { Value.HighBound(); }), "Variant is not an array");
}

TEST(KvVariant, HasATextForm)
{
    const TKvSettingsGuard Guard;
    EXPECT_EQ(TVariant().ToText(), "");
    EXPECT_EQ(TVariant(Null).ToText(), "");
    EXPECT_EQ(TVariant(-42).ToText(), "-42");
    EXPECT_EQ(TVariant(0.1).ToText(), "0.1");
    EXPECT_EQ(TVariant(TCurrency{12345}).ToText(), "1.2345");
    EXPECT_EQ(TVariant(TDateTime{45351}).ToText(), "2/29/2024");
    EXPECT_EQ(TVariant(true).ToText(), "True");
    EXPECT_EQ(TVariant(false).ToText(), "False");
    EXPECT_EQ(TVariant(Long).ToText(), Long);
    EXPECT_EQ(MessageOf<EConvertError>([] { TVariant::Array(0, 0).ToText(); }),
              "A variant array has no text form");
}

TEST(KvVariant, TextFormFollowsTheProcessSettings)
{
    const TKvSettingsGuard Guard(GermanSettings());
    EXPECT_EQ(TVariant(0.5).ToText(), "0,5");
    EXPECT_EQ(TVariant(TCurrency{-5000}).ToText(), "-0,5");
    EXPECT_EQ(TVariant(TDateTime{45351.25}).ToText(), "29.02.2024 06:00:00");
}

TEST(KvVariant, IsBlankWithoutAVisibleCharacter)
{
    for (const auto& Value :
         {TVariant(), TVariant(Null), TVariant(""), TVariant(" \t\r\n"), TVariant(std::string(40, ' '))})
        EXPECT_TRUE(Value.IsBlank());
    for (const auto& Value :
         {TVariant(0), TVariant(false), TVariant(" x "), TVariant("\xA0"), TVariant::Array(0, -1)})
        EXPECT_FALSE(Value.IsBlank());
}

TEST(KvVariant, EqualityFollowsTheValues)
{
    const double TwoTo63 = 9223372036854775808.0;
    const std::int64_t Past53 = (std::int64_t{1} << 53) + 1;

    struct TRow
    {
        const char* Name;
        TVariant A, B;
        bool Equal;
    };
    const TRow Rows[] = {
        {"two empties", {}, {}, true},
        {"two nulls", Null, Null, true},
        {"null and empty", Null, {}, false},
        {"null and nothing typed", Null, "", false},
        {"integers", 7, 7, true},
        {"different integers", 7, 8, false},
        {"integer and double", 7, 7.0, true},
        {"integer and fraction", 7, 7.5, false},
        {"integer that no double holds", Past53, static_cast<double>(Past53), false},
        {"integer and a double past all integers", std::numeric_limits<std::int64_t>::max(), TwoTo63, false},
        {"smallest integer", std::numeric_limits<std::int64_t>::min(), -TwoTo63, true},
        {"integer and currency", 7, TCurrency{70000}, true},
        {"integer past all currencies", std::numeric_limits<std::int64_t>::max(), TCurrency{-10000}, false},
        {"double and currency", 0.1, TCurrency{1000}, true},
        {"double between currencies", 0.10001, TCurrency{1000}, false},
        {"no number at all", std::numeric_limits<double>::quiet_NaN(),
         std::numeric_limits<double>::quiet_NaN(), false},
        {"no number and integer", std::numeric_limits<double>::quiet_NaN(), 0, false},
        {"dates", TDateTime{1.5}, TDateTime{1.5}, true},
        {"date and number", TDateTime{1}, 1, false},
        {"booleans", true, true, true},
        {"boolean and number", true, 1, false},
        {"texts", Short, Short, true},
        {"long texts", Long, TVariant::Borrow(Long), true},
        {"texts in another case", "a", "A", false},
        {"text and number", "7", 7, false},
        {"arrays", ArrayOf({1, "a"}), ArrayOf({1.0, "a"}), true},
        {"arrays with different bounds", ArrayOf({1}, 0), ArrayOf({1}, 1), false},
        {"arrays of different size", ArrayOf({1}), ArrayOf({1, 1}), false},
        {"array and its element", ArrayOf({1}), 1, false},
    };
    for (const auto& Row : Rows) {
        EXPECT_EQ(Row.A == Row.B, Row.Equal) << Row.Name;
        EXPECT_EQ(Row.B == Row.A, Row.Equal) << Row.Name << ", the other way round";
    }
}

TEST(KvCurrency, TakesTheNearestAmount)
{
    EXPECT_EQ(TCurrency::FromDouble(1.23456).Scaled, 12346);
    EXPECT_EQ(TCurrency::FromDouble(-0.1).Scaled, -1000);
    EXPECT_EQ(TCurrency::FromDouble(0.1).ToDouble(), 0.1);
}

TEST(KvCurrency, RefusesAmountsOutOfRange)
{
    const TKvSettingsGuard Guard;
    EXPECT_EQ(MessageOf<EConvertError>([] { TCurrency::FromDouble(1e15); }),
              "'1E15' is not a valid currency value");
    EXPECT_EQ(MessageOf<EConvertError>([] { TCurrency::FromDouble(-1e300); }),
              "'-1E300' is not a valid currency value");
    EXPECT_EQ(
        MessageOf<EConvertError>([] { TCurrency::FromDouble(std::numeric_limits<double>::quiet_NaN()); }),
        "'NAN' is not a valid currency value");
    EXPECT_EQ(TCurrency::FromDouble(-922337203685477.5808).Scaled, std::numeric_limits<std::int64_t>::min());
}

} // namespace
} // namespace kv
