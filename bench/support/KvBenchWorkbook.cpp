#include "KvBenchWorkbook.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "KvBenchSheetOrders.h"
#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvCompoundBuilder.h"
#include "KvWorksheetBuilder.h"

namespace kv::bench {

namespace {

constexpr unsigned DateXf = 1;

double Units(int Cents)
{
    return Cents / 100.0;
}

/// Of UTF-8 without characters of four bytes: the orders have none.
std::u16string Utf16(std::string_view Utf8)
{
    std::u16string Text;
    for (const char Byte : Utf8) {
        const auto Value = static_cast<unsigned char>(Byte);
        if ((Value & 0xC0) == 0x80)
            Text.back() = static_cast<char16_t>(Text.back() << 6 | (Value & 0x3F));
        else
            Text += static_cast<char16_t>(Value < 0x80 ? Value : Value & (Value < 0xE0 ? 0x1F : 0x0F));
    }
    return Text;
}

/// Shared strings, each stored once.
class TStringTable
{
public:
    std::uint32_t IndexOf(std::string_view Text)
    {
        const auto [Found, IsNew] = Indexes.try_emplace(Utf16(Text), Indexes.size());
        if (IsNew)
            Strings.push_back({.Text = Found->first, .IsWide = std::ranges::max(Found->first) > 0xFF});
        return static_cast<std::uint32_t>(Found->second);
    }
    std::string Records() const { return BiffSharedStrings(Strings); }

private:
    std::map<std::u16string, std::size_t> Indexes;
    std::vector<TBiffString> Strings;
};

void AddHeader(TBiffBuilder& Sheet, TStringTable& Strings)
{
    for (unsigned Col = 0; Col < SheetColumnCount; ++Col)
        Sheet.LabelSst(0, Col, Strings.IndexOf(SheetColumnName(Col)));
}

void AddRow(TBiffBuilder& Sheet, TStringTable& Strings, unsigned Row, const TSheetOrder& Order)
{
    const auto& [Id, Customer, City, Ordered, Amount, Qty, Paid, Note] = Order.Texts;
    Sheet.Rk(Row, 0, RkOfInteger(static_cast<int>(Order.Id)))
        .LabelSst(Row, 1, Strings.IndexOf(Customer))
        .LabelSst(Row, 2, Strings.IndexOf(City))
        .Rk(Row, 3, RkOfInteger(Order.OrderedDays), DateXf)
        .Number(Row, 4, Units(Order.AmountCents))
        .Rk(Row, 5, RkOfInteger(Order.Qty))
        .BoolErr(Row, 6, Order.Paid, false);
    if (!Note.empty())
        Sheet.LabelSst(Row, 7, Strings.IndexOf(Note));
    const auto Several = TBytes()
                             .U16(Row)
                             .U16(8)
                             .U16(0)
                             .U32(RkOfInteger(Order.PriceCents, true))
                             .U16(0)
                             .U32(RkOfInteger(Order.Weight))
                             .U16(0)
                             .U32(RkOfDouble(Order.Rate))
                             .U16(10);
    Sheet.Record(0x00BD, Several).Formula(Row, 11, TBytes().F64(Units(Order.TotalCents)));
}

std::string MakeWorksheet(TWorksheetFormat Format, std::size_t Rows)
{
    TWorksheetBuilder Sheet(Format);
    Sheet.Range(SheetColumnCount - 1, static_cast<unsigned>(Rows));
    for (unsigned Col = 0; Col < SheetColumnCount; ++Col)
        Sheet.Label(Col, 0, SheetColumnName(Col));
    TSheetOrder Order;
    for (unsigned Row = 1; Row <= Rows; ++Row) {
        MakeSheetOrder(Row, Order);
        Sheet.Integer(0, Row, static_cast<int>(Row))
            .Label(1, Row, Order.Texts[1])
            .Label(2, Row, Order.Texts[2])
            .Number(3, Row, Order.OrderedDays)
            .Number(4, Row, Units(Order.AmountCents))
            .Integer(5, Row, Order.Qty)
            .Integer(6, Row, Order.Paid)
            .Label(7, Row, Order.Texts[7])
            .Number(8, Row, Units(Order.PriceCents))
            .Integer(9, Row, Order.Weight)
            .Number(10, Row, Order.Rate)
            .Formula(11, Row, Units(Order.TotalCents));
    }
    return Sheet.End().Build();
}

} // namespace

std::string MakeWorkbook(std::size_t Rows)
{
    TBiffBuilder Sheet;
    TStringTable Strings;
    Sheet.Dimensions(0, static_cast<unsigned>(Rows) + 1, 0, SheetColumnCount);
    AddHeader(Sheet, Strings);
    TSheetOrder Order;
    for (unsigned Row = 1; Row <= Rows; ++Row) {
        MakeSheetOrder(Row, Order);
        AddRow(Sheet, Strings, Row, Order);
    }
    const auto Globals = TBiffBuilder().Bof(bpGlobals).CodePage(1200).Xf(0).Xf(14);
    const auto Stream = Globals.Str() + Strings.Records() + TBiffBuilder().Eof().Bof().Add(Sheet).Eof().Str();
    return TCompoundBuilder().Stream(u"Workbook", Stream).Build();
}

std::string MakeLotusSheet(std::size_t Rows) { return MakeWorksheet(wfLotus, Rows); }

std::string MakeQuattroSheet(std::size_t Rows) { return MakeWorksheet(wfQuattro, Rows); }

} // namespace kv::bench
