#include "KvCommandLine.h"

int main(int ArgumentCount, char** Arguments)
{
    return kv::RunCommandLine(ArgumentCount, Arguments);
}
