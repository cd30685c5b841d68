#include "KvModelFile.h"

#include <cstdlib>

#include "KvBiffBuilder.h"
#include "KvCompoundBuilder.h"
#include "KvDbaseBuilder.h"

namespace kv {

namespace {

constexpr unsigned DbaseWidth = 24;                 // of every field, in bytes

std::string Quoted(const std::string& Text)
{
    std::string Result = "\"";
    for (const char Each : Text)
        Result += Each == '"' ? std::string("\"\"") : std::string(1, Each);
    return Result + "\"";
}

std::string CsvOf(const std::vector<std::string>& Names, const std::vector<TModelRecord>& Records)
{
    std::string Text;
    for (std::size_t I = 0; I < Names.size(); ++I)
        Text += (I == 0 ? "" : ",") + Names[I];
    for (const auto& Record : Records)
        for (std::size_t I = 0; I < Record.size(); ++I)
            Text += (I == 0 ? "\n" : ",") + (Record[I] ? Quoted(*Record[I]) : "");
    return Text + "\n";
}

std::string Escaped(const std::string& Text)
{
    std::string Result;
    for (const char Each : Text)
        switch (Each) {
        case '<': Result += "&lt;"; break;
        case '&': Result += "&amp;"; break;
        case '"': Result += "&quot;"; break;
        default:  Result += Each; break;
        }
    return Result;
}

std::string PacketOf(const std::vector<std::string>& Names, const std::vector<TModelRecord>& Records)
{
    std::string Text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<DATAPACKET Version=\"2.0\"><METADATA><FIELDS>";
    for (const auto& Name : Names)
        Text += "<FIELD attrname=\"" + Name + "\" fieldtype=\"string\"/>";
    Text += "</FIELDS></METADATA><ROWDATA>\n";
    for (const auto& Record : Records) {
        Text += "<ROW";
        for (std::size_t I = 0; I < Record.size(); ++I)
            if (Record[I])
                Text += " " + Names[I] + "=\"" + Escaped(*Record[I]) + "\"";
        Text += "/>\n";
    }
    return Text + "</ROWDATA></DATAPACKET>\n";
}

std::string PageOf(const std::vector<std::string>& Names, const std::vector<TModelRecord>& Records)
{
    std::string Text = "<html><head><meta charset=\"utf-8\"></head><body><table>\n<tr>";
    for (const auto& Name : Names)
        Text += "<th>" + Name + "</th>";
    for (const auto& Record : Records) {
        Text += "</tr>\n<tr>";
        for (const auto& Value : Record)
            Text += "<td>" + Escaped(Value.value_or("")) + "</td>";
    }
    return Text + "</tr>\n</table></body></html>\n";
}

std::string DbaseOf(const std::vector<std::string>& Names, const std::vector<TModelRecord>& Records)
{
    TDbaseBuilder Table;
    for (const auto& Name : Names)
        Table.Field(Name, 'C', DbaseWidth);
    for (const auto& Record : Records) {
        std::vector<std::string> Values;
        for (const auto& Value : Record)
            Values.push_back(Value.value_or(""));
        Table.Record(Values);
    }
    return Table.Build();
}

std::string WorkbookOf(const std::vector<std::string>& Names, const std::vector<TModelRecord>& Records)
{
    TBiffBuilder Sheet(bv5);
    Sheet.Dimensions(0, static_cast<unsigned>(Records.size()) + 1, 0, static_cast<unsigned>(Names.size()));
    for (unsigned Column = 0; Column < Names.size(); ++Column)
        Sheet.Label(0, Column, Names[Column]);
    for (unsigned Row = 0; Row < Records.size(); ++Row)
        for (unsigned Column = 0; Column < Names.size(); ++Column)
            if (const auto& Value = Records[Row][Column])
                Sheet.Label(Row + 1, Column, *Value);
    return TCompoundBuilder().Stream(u"Book", TWorkbookBuilder(bv5).Sheet("orders", Sheet).Build()).Build();
}

} // namespace

const char* NameOf(TModelFileKind Kind)
{
    switch (Kind) {
    case mfText:     return "orders.csv";
    case mfPacket:   return "orders.xml";
    case mfPage:     return "orders.html";
    case mfDbase:    return "orders.dbf";
    case mfWorkbook: return "orders.xls";
    }
    std::abort();
}

std::string BytesOf(TModelFileKind Kind, const std::vector<std::string>& Names,
                    const std::vector<TModelRecord>& Records)
{
    switch (Kind) {
    case mfText:     return CsvOf(Names, Records);
    case mfPacket:   return PacketOf(Names, Records);
    case mfPage:     return PageOf(Names, Records);
    case mfDbase:    return DbaseOf(Names, Records);
    case mfWorkbook: return WorkbookOf(Names, Records);
    }
    std::abort();
}

} // namespace kv
