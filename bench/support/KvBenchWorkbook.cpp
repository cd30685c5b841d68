#include "KvBenchWorkbook.h"

#include <array>
#include <map>
#include <string_view>
#include <vector>

#include "KvBenchOrders.h"
#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvCompoundBuilder.h"

namespace kv::bench {

namespace {

/// Shared strings, each stored once.
class TStringTable
{
public:
    std::uint32_t IndexOf(std::string_view Text)
    {
        const auto [Found, IsNew] = Indexes.try_emplace(std::u16string(Text.begin(), Text.end()), Indexes.size());
        if (IsNew)
            Strings.push_back({.Text = Found->first});
        return static_cast<std::uint32_t>(Found->second);
    }
    std::string Records() const { return BiffSharedStrings(Strings); }

private:
    std::map<std::u16string, std::size_t> Indexes;
    std::vector<TBiffString> Strings;
};

void AddHeader(TBiffBuilder& Sheet, TStringTable& Strings)
{
    constexpr std::string_view Names[] = {"ID",   "CUSTOMER", "CITY",  "ORDERED", "AMOUNT", "QTY",
                                          "PAID", "NOTE",     "PRICE", "WEIGHT",  "RATE",   "TOTAL"};
    unsigned Col = 0;
    for (const auto Name : Names)
        Sheet.LabelSst(0, Col++, Strings.IndexOf(Name));
}

void AddRow(TBiffBuilder& Sheet, TStringTable& Strings, unsigned Row, const TOrder& Order)
{
    const int Id = static_cast<int>(Row);
    const double Amount = Id * 1.37;
    Sheet.Rk(Row, 0, RkOfInteger(Id))
        .LabelSst(Row, 1, Strings.IndexOf(Order[1]))
        .LabelSst(Row, 2, Strings.IndexOf(Order[2]))
        .Rk(Row, 3, RkOfInteger(36526 + Id % 9000), 1)
        .Number(Row, 4, Amount)
        .Rk(Row, 5, RkOfInteger(Id % 100))
        .BoolErr(Row, 6, Row % 2, false)
        .LabelSst(Row, 7, Strings.IndexOf(Order[7]));
    const auto Several = TBytes()
                             .U16(Row)
                             .U16(8)
                             .U16(0)
                             .U32(RkOfInteger(Id * 3, true))
                             .U16(0)
                             .U32(RkOfInteger(Id % 777))
                             .U16(0)
                             .U32(RkOfDouble(0.25))
                             .U16(10);
    Sheet.Record(0x00BD, Several).Formula(Row, 11, TBytes().F64(Amount * 1.19));
}

} // namespace

std::string MakeWorkbook(std::size_t Rows)
{
    TBiffBuilder Sheet;
    TStringTable Strings;
    Sheet.Dimensions(0, static_cast<unsigned>(Rows) + 1, 0, 12);
    AddHeader(Sheet, Strings);
    TOrder Order;
    for (unsigned Row = 1; Row <= Rows; ++Row) {
        MakeOrder(Row, 0, Order);
        AddRow(Sheet, Strings, Row, Order);
    }
    const auto Globals = TBiffBuilder().Bof(bpGlobals).CodePage(1200).Xf(0).Xf(14);
    const auto Stream = Globals.Str() + Strings.Records() + TBiffBuilder().Eof().Bof().Add(Sheet).Eof().Str();
    return TCompoundBuilder().Stream(u"Workbook", Stream).Build();
}

} // namespace kv::bench
