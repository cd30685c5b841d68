// Imports any file into any table and says what it found on the way.
//
//   import_example orders.xls sqlite:shop.db orders
#include <iostream>

#include "KvJobRun.h"
#include "KvSqliteDatabase.h"

/// Prints what goes wrong as it goes wrong.
struct TPrinter : kv::TJobObserver
{
    bool RecordFailed(const kv::TJobError& Error) override
    {
        std::cerr << Error.Text() << '\n';
        return true;
    }
};

int main(int ArgumentCount, char** Arguments)
try {
    if (ArgumentCount != 4) {
        std::cerr << "Usage: import_example FILE DATABASE TABLE\n";
        return 2;
    }
    kv::RegisterSqliteDatabases();
    kv::TJobSettings Settings;
    Settings.Source.FileName = Arguments[1];
    Settings.Destination = {.Url = Arguments[2], .Table = Arguments[3]};
    TPrinter Printer;
    kv::TJobRun Run(Settings, Printer);
    Run.Prepare();
    for (const auto& Finding : Run.Findings())      // an enumerator with its facts, for words of one's own
        std::cout << "found: " << Finding.Kind << " " << Finding.Value << '\n';
    for (const auto& Fate : Run.Plan().Columns)
        std::cout << Fate.Column.Name << " -> " << (Fate.Field.empty() ? "nothing" : Fate.Field) << '\n';
    const auto& Outcome = Run.Execute();
    std::cout << Outcome.Figures.Added << " added, " << Outcome.Figures.Failed << " failed\n";
    return Outcome.Complete ? 0 : 1;
}
catch (const kv::Exception& Error) {
    std::cerr << Error.Message << '\n';
    return 1;
}
