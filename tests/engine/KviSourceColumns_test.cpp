#include "KviSourceColumns.h"

namespace kv {

namespace {

/// Columns that resolve to the length of their names, counting how often they are asked.
struct KviSourceColumns : testing::Test
{
    std::size_t Find(const char* Name)
    {
        return Columns.Find(TVariant(Name), [this](const std::string& Text) {
            ++Resolved;
            return Text.size();
        });
    }

    TKvSourceColumns<std::size_t> Columns;
    int Resolved = 0;
};

TEST_F(KviSourceColumns, EachNameIsResolvedOnceARun)
{
    for (int Record = 0; Record < 3; ++Record)
        for (const char* const Name : {"A", "BB", "A", "CCC", "BB"})
            EXPECT_EQ(Find(Name), std::string_view(Name).size());
    EXPECT_EQ(Resolved, 3);
    Columns.Clear();
    Find("A");
    EXPECT_EQ(Resolved, 4);
}

TEST_F(KviSourceColumns, NamesAreComparedToTheLetter)
{
    Find("a");
    Find("A");
    EXPECT_EQ(Resolved, 2);
}

TEST_F(KviSourceColumns, ManyNamesAreResolvedOnceTooInWhateverOrderTheyAreAsked)
{
    const auto NameOf = [](int Number) { return std::string(static_cast<std::size_t>(Number), 'x'); };
    for (int Number = 1; Number <= 100; ++Number)
        EXPECT_EQ(Find(NameOf(Number).c_str()), static_cast<std::size_t>(Number));
    for (int Number = 100; Number >= 1; --Number)
        EXPECT_EQ(Find(NameOf(Number).c_str()), static_cast<std::size_t>(Number));
    EXPECT_EQ(Resolved, 100);
    Columns.Clear();
    Find(NameOf(100).c_str());
    EXPECT_EQ(Resolved, 101);
}

TEST_F(KviSourceColumns, NameThatCannotBeResolvedIsNotRemembered)
{
    const auto Raise = [](const std::string&) -> std::size_t { throw 1; };
    EXPECT_ANY_THROW(Columns.Find(TVariant("A"), Raise));
    EXPECT_EQ(Find("A"), 1u);
}

} // namespace

} // namespace kv
