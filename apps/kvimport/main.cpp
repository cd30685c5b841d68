#include "KvCommandLine.h"
#include "KvSqliteDatabase.h"
#include "KvStandardFiles.h"

int main(int ArgumentCount, char** Arguments)
{
    kv::OpenStandardFiles();
    kv::StopSqliteMemoryCount();
    kv::RegisterSqliteDatabases();
    return kv::RunCommandLine(ArgumentCount, Arguments);
}
