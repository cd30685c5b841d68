#include "KvCommandLine.h"
#include "KvSqliteDatabase.h"

int main(int ArgumentCount, char** Arguments)
{
    kv::StopSqliteMemoryCount();
    return kv::RunCommandLine(ArgumentCount, Arguments);
}
