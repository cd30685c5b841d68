#include "KvSource.h"

#include "KvColumnMap.h"

namespace kv {

/// Most sources take any other name for a constant.
std::string TSource::RemarkOnStranger(const std::string& Column)
{
    return RemarkOnConstant(Column, Columns());
}

} // namespace kv
