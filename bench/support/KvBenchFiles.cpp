#include "KvBenchFiles.h"

#include <fstream>
#include <string>

#include "KvBenchOrders.h"
#include "KvBenchRandom.h"

namespace kv::bench {

namespace {

constexpr std::uint64_t OrderSeed = 20240229;

/// Writes lines through a buffer of about 1 MB.
class TLineWriter
{
public:
    TLineWriter(const std::filesystem::path& File, TOrderLines Kind, std::string_view End)
        : Lines(Kind), LineEnd(End)
    {
        Out.exceptions(std::ios::failbit | std::ios::badbit);
        Out.open(File, std::ios::binary | std::ios::trunc);
        WriteHeader();
    }

    void Write(std::uint64_t Id, std::uint64_t Revision)
    {
        MakeOrder(Id, Revision, Order);
        Text += Lines == olHtml ? "<tr>" : Lines == olXml ? "<ROW" : "";
        for (std::size_t Column = 0; Column < Order.size(); Column++)
            Append(Column);
        Text += Lines == olHtml ? "</tr>" : Lines == olXml ? "/>" : "";
        Text += LineEnd;
        if (Text.size() > (1u << 20))
            Flush();
    }

    void Close()
    {
        if (Lines == olHtml)
            Text += "</table>\n</body>\n</html>\n";
        if (Lines == olXml)
            Text += "</ROWDATA></DATAPACKET>\n";
        Flush();
        Out.close();
    }

private:
    void WriteHeader()
    {
        switch (Lines) {
        case olDelimited:
            for (const auto& Column : OrderColumns)
                Text.append(&Column == OrderColumns.data() ? "" : ",").append(Column.Name);
            break;
        case olFixedWidth:
            return;
        case olHtml:
            Text = "<html>\n<head><meta charset=\"utf-8\"><title>Orders</title></head>\n"
                   "<body>\n<table border=1>\n<tr>";
            for (const auto& Column : OrderColumns)
                Text.append("<th>").append(Column.Name).append("</th>");
            Text += "</tr>";
            break;
        case olXml:
            Text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                   "<DATAPACKET Version=\"2.0\"><METADATA><FIELDS>";
            for (const auto& Column : OrderColumns)
                Text.append("<FIELD attrname=\"").append(Column.Name).append("\" fieldtype=\"string\"/>");
            Text += "</FIELDS><PARAMS/></METADATA><ROWDATA>";
            break;
        }
        Text += LineEnd;
    }

    void Append(std::size_t Column)
    {
        switch (Lines) {
        case olDelimited:  return AppendDelimited(Column);
        case olFixedWidth: return AppendPadded(Column);
        case olHtml:       return AppendCell(Column);
        case olXml:        return AppendAttribute(Column);
        }
    }

    void AppendDelimited(std::size_t Column)
    {
        if (Column > 0)
            Text += ',';
        if (OrderColumns[Column].Name == "CUSTOMER")
            AppendQuoted(Order[Column]);
        else
            Text += Order[Column];
    }

    void AppendQuoted(std::string_view Value)
    {
        Text += '"';
        for (const char Byte : Value)
            Text.append(Byte == '"' ? 2 : 1, Byte);
        Text += '"';
    }

    void AppendPadded(std::size_t Column)
    {
        Text += Order[Column];
        Text.append(OrderColumns[Column].Width - Order[Column].size(), ' ');
    }

    void AppendCell(std::size_t Column)
    {
        Text += "<td>";
        AppendEscaped(Order[Column]);
        Text += "</td>";
    }

    void AppendAttribute(std::size_t Column)
    {
        if (Order[Column].empty())
            return;
        Text.append(" ").append(OrderColumns[Column].Name).append("=\"");
        AppendEscaped(Order[Column]);
        Text += '"';
    }

    void AppendEscaped(std::string_view Value)
    {
        for (const char Byte : Value)
            switch (Byte) {
            case '&': Text += "&amp;"; break;
            case '"': Text += "&quot;"; break;
            default:  Text += Byte; break;
            }
    }

    void Flush()
    {
        Out.write(Text.data(), static_cast<std::streamsize>(Text.size()));
        Text.clear();
    }

    std::ofstream Out;
    TOrderLines Lines;
    std::string_view LineEnd;
    TOrder Order;
    std::string Text;
};

} // namespace

void WriteOrders(const std::filesystem::path& File, TOrderLines Lines, std::uint64_t Rows,
                 std::string_view LineEnd)
{
    TLineWriter Writer(File, Lines, LineEnd);
    for (std::uint64_t Id = 1; Id <= Rows; Id++)
        Writer.Write(Id, 0);
    Writer.Close();
}

void WriteKeyedOrders(const std::filesystem::path& File, std::uint64_t Rows, std::uint64_t TableRows)
{
    const TRandomOrder Known(TableRows, OrderSeed), New(TableRows, OrderSeed + 1);
    TRandom Coin(OrderSeed);
    TLineWriter Writer(File, olDelimited, "\n");
    for (std::uint64_t Row = 0; Row < Rows; Row += 2) {
        const std::uint64_t Ids[] = {1 + Known[Row / 2], 1 + TableRows + New[Row / 2]};
        const auto First = Coin.Below(2);           // an order that always comes second is easy to predict
        Writer.Write(Ids[First], 1);
        if (Row + 1 < Rows)
            Writer.Write(Ids[1 - First], 1);
    }
    Writer.Close();
}

} // namespace kv::bench
