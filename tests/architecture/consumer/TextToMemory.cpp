// Imports a text file into a table in memory and prints a value of its first record.
#include <iostream>

#include "KvMemoryDataSet.h"
#include "Kvi2txt.h"

int main(int ArgumentCount, char** Arguments)
{
    kv::TMemoryDataSet Orders;
    Orders.SetFieldDefs({{.Name = "ID", .DataType = kv::ftInteger}, {.Name = "CITY", .Size = 20}});
    Orders.Open();

    kv::TKvImportFromText Import;
    Import.SetDataSet(&Orders);
    Import.SourceFileName = ArgumentCount > 1 ? Arguments[1] : "";
    Import.SetFieldDelimiter(kv::fdComma);
    Import.Execute();

    std::cout << Import.ErrorMessage() << Orders.FieldByName("CITY").AsString() << '\n';
    return 0;
}
