#include "core/activity/AppUsage.h"

namespace nubo {

size_t qHash(const AppUsage& usage, size_t seed)
{
    return qHashMulti(seed, usage.pid, usage.name, usage.bundleURL, usage.cpu, usage.memory, usage.isHidden,
                      usage.isActive);
}

} // namespace nubo
