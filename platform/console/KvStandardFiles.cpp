#include "KvStandardFiles.h"

#include <fcntl.h>
#include <unistd.h>

namespace kv {

void OpenStandardFiles()
{
    constexpr int StandardError = 2;
    int Opened = 0;
    do
        Opened = open("/dev/null", O_RDWR);         // the lowest number that is free
    while (Opened >= 0 && Opened < StandardError);
    if (Opened > StandardError)
        close(Opened);
}

} // namespace kv
