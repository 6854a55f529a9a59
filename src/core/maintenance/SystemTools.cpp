#include "core/maintenance/SystemTools.h"

#include <unistd.h>

namespace nubo {

SystemTools SystemTools::system(const SystemRoots& roots)
{
    SystemTools tools;
    tools.userId = uint(::getuid());
    tools.userAgents = roots.userLibrary() + QStringLiteral("/LaunchAgents");
    tools.agents = roots.library + QStringLiteral("/LaunchAgents");
    tools.daemons = roots.library + QStringLiteral("/LaunchDaemons");
    return tools;
}

} // namespace nubo
