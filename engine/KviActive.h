// KviActive - a component does one thing at a time.
#pragma once

#include "Kvibase.h"

namespace kv {

/// For the length of a run or a look.
class TKvImportBaseComponent::TActive
{
public:
    /// Raises Exception "%s: %s cannot be called before %s has ended", naming `Operation`, when there is one.
    TActive(TKvImportBaseComponent& Busy, TActivity Activity, std::string_view Operation);
    TActive(const TActive&) = delete;
    TActive& operator=(const TActive&) = delete;
    ~TActive();

private:
    TKvImportBaseComponent& Component;
};

} // namespace kv
