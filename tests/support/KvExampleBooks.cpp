#include "KvExampleFiles.h"

#include <map>
#include <string_view>

#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvCompoundBuilder.h"
#include "KvWorksheetBuilder.h"

namespace kv {

namespace {

constexpr unsigned DateFormat = 14, DateXf = 1;

// Of the workbook. Dates are days since 30 December 1899.
struct TOrder
{
    int Id;
    std::u16string_view Customer, City, Country;
    int Ordered;
    double Amount;
    int Quantity;
    bool Paid;
    std::u16string_view Note;
};

constexpr TOrder Orders[] = {
    {20401, u"Müller, Söhne & Co.", u"Köln", u"DE", 45566, 1871.2, 9, true, u"Deliver to the yard"},
    {20402, u"Żółta Łódź", u"Łódź", u"PL", 45567, 1444.8, 20, true, u""},
    {20403, u"Ψωμί και Λάδι", u"Αθήνα", u"GR", 45569, 86.5, 5, false, u"Call first"},
    {20404, u"Au Panier Lyonnais", u"Lyon", u"FR", 45569, 661.36, 6, false, u""},
    {20405, u"Carnes Aurora", u"Rio de Janeiro", u"BR", 45573, -120.0, 1, true, u"Returned"}};

constexpr std::u16string_view Headings[] = {u"ID",     u"Customer", u"City", u"Country", u"Ordered",
                                            u"Amount", u"Qty",      u"Paid", u"Note"};

/// Shared strings in the order in which they are first asked for.
class TStringTable
{
public:
    unsigned operator()(std::u16string_view Text)
    {
        const auto [Entry, IsNew] = Indexes.try_emplace(Text, static_cast<unsigned>(Strings.size()));
        if (IsNew)
            Strings.push_back({.Text = Text, .IsWide = true});
        return Entry->second;
    }
    std::string Records() const { return BiffSharedStrings(Strings); }

private:
    std::map<std::u16string_view, unsigned> Indexes;
    std::vector<TBiffString> Strings;
};

TBiffBuilder TitleSheet(TStringTable& Strings)
{
    return TBiffBuilder()
        .Dimensions(0, 2, 0, 1)
        .LabelSst(0, 0, Strings(u"Orders of October 2024"))
        .LabelSst(1, 0, Strings(u"See the next sheet"));
}

TBiffBuilder OrderSheet(TStringTable& Strings)
{
    TBiffBuilder Sheet;
    Sheet.Dimensions(0, static_cast<unsigned>(std::size(Orders)) + 1, 0,
                     static_cast<unsigned>(std::size(Headings)));
    for (unsigned Col = 0; Col < std::size(Headings); ++Col)
        Sheet.LabelSst(0, Col, Strings(Headings[Col]));
    for (unsigned Row = 1; const auto& Order : Orders) {
        Sheet.Rk(Row, 0, RkOfInteger(Order.Id));
        Sheet.LabelSst(Row, 1, Strings(Order.Customer)).LabelSst(Row, 2, Strings(Order.City))
             .LabelSst(Row, 3, Strings(Order.Country));
        Sheet.Number(Row, 4, Order.Ordered, DateXf).Number(Row, 5, Order.Amount)
             .Rk(Row, 6, RkOfInteger(Order.Quantity));
        Sheet.BoolErr(Row, 7, Order.Paid, false);
        if (!Order.Note.empty())
            Sheet.LabelSst(Row, 8, Strings(Order.Note));
        ++Row;
    }
    return Sheet;
}

std::string Workbook()
{
    TStringTable Strings;
    const auto Title = TitleSheet(Strings), Sheet = OrderSheet(Strings);
    TWorkbookBuilder Book;
    Book.Globals(TBiffBuilder().CodePage(1200).Xf(0).Xf(DateFormat).Add(Strings.Records()));
    Book.Sheet("Title", Title).Sheet("Orders", Sheet);
    return TCompoundBuilder().Stream(u"Workbook", Book.Build()).Build();
}

/// Text in code page 437.
std::string Worksheet(TWorksheetFormat Format)
{
    TWorksheetBuilder Book(Format);
    Book.Range(4, 3);
    for (unsigned Col = 0; const auto* const Heading : {"ID", "CUSTOMER", "CITY", "ORDERED", "AMOUNT"})
        Book.Label(Col++, 0, Heading);
    Book.Integer(0, 1, 10001).Label(1, 1, "Gr\x94\xE1te Auswahl").Label(2, 1, "M\x81nchen")
        .Number(3, 1, 32874).Number(4, 1, 498.5);
    Book.Integer(0, 2, 10002).Label(1, 2, "Comidas Pe\xA4\xA2n").Label(2, 2, "Madrid").Number(3, 2, 32881)
        .Number(4, 2, 4157);
    Book.Integer(0, 3, 10003).Label(1, 3, "Murtal Handel").Label(2, 3, "Graz").Number(3, 3, 32895)
        .Number(4, 3, 86.25);
    return Book.End().Build();
}

} // namespace

std::vector<TExampleFile> ExampleBooks()
{
    return {{"orders.xls", Workbook()}, {"orders.wk1", Worksheet(wfLotus)},
            {"orders.wq1", Worksheet(wfQuattro)}};
}

} // namespace kv
