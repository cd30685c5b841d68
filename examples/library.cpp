// Imports a file of orders into a table with the library alone, as a program of one's own would do.
//
//   library_example orders.csv shop.db
#include <iostream>

#include "KvFormatSettings.h"
#include "KvSqliteTable.h"
#include "Kvi2txt.h"

int main(int ArgumentCount, char** Arguments)
{
    if (ArgumentCount != 3) {
        std::cerr << "Usage: library_example FILE DATABASE\n";
        return 2;
    }

    kv::FormatSettings() = {.DateSeparator = '-', .ShortDateFormat = "yyyy-MM-dd"}; // not the locale's

    kv::TSQLiteTable orders;                        // any dataset
    orders.DatabaseName = Arguments[2];
    orders.TableName = "orders";
    orders.CommitEvery = 1000;

    kv::TKvImportFromText import;
    import.SetDataSet(&orders);
    import.SourceFileName = Arguments[1];
    import.SetFieldDelimiter(kv::fdComma);
    import.Extensions = {kv::xtDoubledQualifiers};  // "He said ""hi""" is one value
    import.RowFirst = 2;                            // line 1 is the header
    import.Mode = kv::imAppendUpdate;
    import.DatasetKeys = "ID";
    import.OnErrorEvent = [](kv::TKvImportBaseComponent& Sender, const kv::Exception& Error, bool&) {
        std::cerr << Sender.RecordPlace() << ": " << Error.Message << '\n';
    };

    try {
        orders.Open();
        import.Execute();
        orders.Close();
    }
    catch (const kv::Exception& Error) {
        std::cerr << Error.Message << '\n';
        return 1;
    }

    if (import.Statistic.Result != kv::irExecuted) {
        std::cerr << import.ErrorMessage() << '\n';
        return 1;
    }
    std::cout << import.Statistic.TotalAdded << " added, " << import.Statistic.TotalUpdated << " updated, "
              << import.Statistic.TotalErrors << " errors\n";
    return 0;
}
