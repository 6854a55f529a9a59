#include "support/TemporaryMac.h"

#include "support/FixtureFiles.h"

namespace nubo::test {

TemporaryMac::TemporaryMac()
{
    for (const char* folder : {"home/Library/LaunchAgents", "Library/LaunchAgents", "Library/LaunchDaemons", "tmp"})
        makeDir(path(folder));
    tools.userId = 501;
    tools.launchctl = path("launchctl");
    tools.tmutil = path("tmutil");
    tools.shell = path("sh");
    tools.userAgents = path("home/Library/LaunchAgents");
    tools.agents = path("Library/LaunchAgents");
    tools.daemons = path("Library/LaunchDaemons");
}

QString TemporaryMac::path(const char* relative) const
{
    return m_dir.filePath(QString::fromUtf8(relative));
}

void TemporaryMac::tool(const char* name, const QByteArray& body) const
{
    writeScript(path(name), body);
}

SystemRoots TemporaryMac::roots() const
{
    return SystemRoots{path("home"), path("Library"), path("tmp")};
}

} // namespace nubo::test
