#include "KvJobFindings.h"

#include <utility>

namespace kv {

EJobRefused::EJobRefused(TJobFinding Found)
    : Exception("The import was refused by check " + std::to_string(Found.Kind) + " (" + Found.Name +
                Found.Value + ")"),
      Finding(std::move(Found))
{
}

void Refuse(TJobFinding Finding)
{
    throw EJobRefused(std::move(Finding));
}

} // namespace kv
