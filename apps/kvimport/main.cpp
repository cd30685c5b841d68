#include "KvCommandLine.h"
#include "KvSqliteDatabase.h"

int main(int ArgumentCount, char** Arguments)
{
    kv::StopSqliteMemoryCount();
    kv::RegisterSqliteDatabases();
    return kv::RunCommandLine(ArgumentCount, Arguments);
}
