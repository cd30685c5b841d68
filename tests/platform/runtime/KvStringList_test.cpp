#include "KvStringList.h"

#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

TEST(KvStringList, IsEmptyAtFirst)
{
    const TStrings List;
    EXPECT_EQ(List.Count(), 0);
    EXPECT_TRUE(List.IsEmpty());
    EXPECT_EQ(List.Text(), "");
}

TEST(KvStringList, AddsInsertsAndDeletesLines)
{
    TStrings List{"b"};
    EXPECT_EQ(List.Add("d"), 1);
    List.Insert(0, "a");
    List.Insert(2, "c");
    List.Insert(4, "e");
    EXPECT_EQ(List, (TStrings{"a", "b", "c", "d", "e"}));
    List.Delete(4);
    List.Delete(0);
    List.SetLine(1, "C");
    EXPECT_EQ(List, (TStrings{"b", "C", "d"}));
    List.Clear();
    EXPECT_TRUE(List.IsEmpty());
}

TEST(KvStringList, RefusesIndexesOutOfBounds)
{
    TStrings List{"a"};
    EXPECT_EQ(MessageOf<Exception>([&] { List[1]; }), "List index out of bounds (1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List[-1]; }), "List index out of bounds (-1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.SetLine(1, ""); }), "List index out of bounds (1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.Insert(2, ""); }), "List index out of bounds (2)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.Delete(1); }), "List index out of bounds (1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.NameAt(1); }), "List index out of bounds (1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.ValueAt(1); }), "List index out of bounds (1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.Object(1); }), "List index out of bounds (1)");
    EXPECT_EQ(MessageOf<Exception>([&] { List.SetObject(1, {}); }), "List index out of bounds (1)");
}

TEST(KvStringList, FindsLinesInAnyCase)
{
    const TStrings List{"Alpha", "beta", "BETA"};
    EXPECT_EQ(List.IndexOf("ALPHA"), 0);
    EXPECT_EQ(List.IndexOf("Beta"), 1);
    EXPECT_EQ(List.IndexOf("gamma"), -1);
}

TEST(KvStringList, ReadsNamesAndValues)
{
    const TStrings List{"Key=Value", "plain", "Empty=", "=nameless", "KEY=second", "Sum=a=b"};
    EXPECT_EQ(List.NameAt(0), "Key");
    EXPECT_EQ(List.ValueAt(0), "Value");
    EXPECT_EQ(List.NameAt(1), "");
    EXPECT_EQ(List.ValueAt(1), "");
    EXPECT_EQ(List.ValueAt(2), "");
    EXPECT_EQ(List.ValueAt(3), "nameless");
    EXPECT_EQ(List.ValueAt(5), "a=b");
    EXPECT_EQ(List.Value("kEY"), "Value");
    EXPECT_EQ(List.Value("none"), "");
    EXPECT_EQ(List.IndexOfName("plain"), -1);
    EXPECT_EQ(List.IndexOfName("Ke"), -1);
    EXPECT_EQ(List.IndexOfName("empty"), 2);
}

TEST(KvStringList, ObjectsMoveWithTheirLines)
{
    TStrings List{"a", "b", "c"};
    EXPECT_TRUE(List.Object(2).IsEmpty());
    List.SetObject(1, 7);
    EXPECT_EQ(List.Add("d", "orders.kvi"), 3);
    List.Insert(0, "new");
    EXPECT_EQ(List.Object(2), TVariant(7));
    EXPECT_EQ(List.Object(4), TVariant("orders.kvi"));
    List.Delete(2);
    EXPECT_TRUE(List.Object(2).IsEmpty());
    EXPECT_EQ(List.Object(3), TVariant("orders.kvi"));
    List.Clear();
    List.Add("x");
    EXPECT_TRUE(List.Object(0).IsEmpty());
}

TEST(KvStringList, KeepsACopyOfWhatIsAttached)
{
    std::string Text(100, 'x');
    TStrings List{"a", "b"};
    List.SetObject(0, TVariant::Borrow(Text));
    List.SetObject(1, List.Object(0));
    Text.assign(100, 'y');
    EXPECT_EQ(List.Object(0), TVariant(std::string(100, 'x')));
    EXPECT_EQ(List.Object(1), TVariant(std::string(100, 'x')));
}

TEST(KvStringList, EveryLineEndEndsALine)
{
    struct TRow
    {
        const char* Text;
        TStrings Lines;
    };
    const TRow Rows[] = {
        {"", {}},
        {"a", {"a"}},
        {"a\r\n", {"a"}},
        {"a\nb\rc\r\nd", {"a", "b", "c", "d"}},
        {"\n", {""}},
        {"\n\n", {"", ""}},
        {"\r\r\n", {"", ""}},
        {"a\n\nb", {"a", "", "b"}},
    };
    for (const auto& [Text, Lines] : Rows) {
        TStrings List{"old"};
        List.SetText(Text);
        EXPECT_EQ(List, Lines) << testing::PrintToString(Text);
    }
}

TEST(KvStringList, TextReadsBack)
{
    const TStrings List{"a", "", "b "};
    EXPECT_EQ(List.Text(), "a\r\n\r\nb \r\n");
    TStrings Other;
    Other.SetText(List.Text());
    EXPECT_EQ(Other, List);
}

TEST(KvStringList, TakesTextFromOneOfItsLines)
{
    TStrings List{"one\ntwo three four five six seven"};
    List.SetText(List[0]);
    EXPECT_EQ(List, (TStrings{"one", "two three four five six seven"}));
}

TEST(KvStringList, TakesLinesFromItself)
{
    TStrings List{"a line that does not fit into a short string"};
    for (int I = 0; I < 5; ++I)
        List.Add(List[0]);
    List.Insert(0, List[5]);
    EXPECT_EQ(List[0], List[6]);
}

TEST(KvStringList, AssignsLinesAndObjects)
{
    TStrings Source, Target{"old"};
    Source.Add("a", 7);
    Target.Assign(Source);
    EXPECT_EQ(Target, Source);
    EXPECT_EQ(Target.Object(0), TVariant(7));
    EXPECT_EQ(MessageOf<EConvertError>([&] { Target.Assign(TComponent()); }),
              "Cannot assign a TComponent to a TStrings.");
}

class KvStringListChange : public testing::Test
{
protected:
    KvStringListChange() { List.OnChange = [this] { ++Changes; }; }

    TStrings List;
    int Changes = 0;
};

TEST_F(KvStringListChange, IsToldOnceForEveryCall)
{
    List.Add("a", 7);
    EXPECT_EQ(Changes, 1);
    List.SetLine(0, "b");
    List.Insert(0, "c");
    List.SetObject(0, {});
    List.Delete(0);
    List.SetText("x\ny");
    List.Assign(TStrings{"z"});
    List.Clear();
    EXPECT_EQ(Changes, 8);
}

TEST_F(KvStringListChange, IsHeldBackBetweenUpdateBrackets)
{
    List.BeginUpdate();
    List.BeginUpdate();
    List.Add("a");
    List.EndUpdate();
    List.Add("b");
    EXPECT_EQ(Changes, 0);
    List.EndUpdate();
    EXPECT_EQ(Changes, 1);
    List.Add("c");
    EXPECT_EQ(Changes, 2);
}

TEST_F(KvStringListChange, IsNotToldOfBracketsWithoutAChange)
{
    List.BeginUpdate();
    List.EndUpdate();
    EXPECT_EQ(Changes, 0);
}

} // namespace
} // namespace kv
