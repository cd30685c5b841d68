#include "KvAccessTypes.h"

#include <gtest/gtest.h>

namespace kv {

namespace {

TEST(KvAccessTypes, AreNamedAsInAccess)
{
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = afBoolean}), "Yes/No");
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = afLong, .Size = 4}), "Long Integer");
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = afText, .Size = 50}), "Text (50)");
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = afBinary, .Size = 16}), "Binary (16)");
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = afMemo}), "Memo");
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = afDecimal, .Size = 17, .Precision = 18, .Scale = 2}),
              "Decimal (18, 2)");
}

TEST(KvAccessTypes, AnUnknownTypeIsShownByItsNumber)
{
    EXPECT_EQ(AccessTypeText({.Name = "A", .Type = static_cast<TAccessFieldType>(20)}), "Type 20");
}

} // namespace

} // namespace kv
