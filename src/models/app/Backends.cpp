#include "models/app/Backends.h"

#include "core/format/CheckedMath.h"
#include "core/shell/ShellToolRunner.h"

#include <csignal>
#include <sys/types.h>

namespace nubo {

namespace {

// The polite request to quit, which the application may answer in its own time.
void askToQuit(const RunningApplication& app)
{
    if (app.pid > 0)
        ::kill(pid_t(app.pid), SIGTERM);
}

} // namespace

Backends::Backends(SystemRoots roots, const Privacy& privacy, Overrides overrides)
    : m_roots(std::move(roots)), m_admin(overrides.admin ? std::move(overrides.admin) : makeAdminRunner()),
      m_workspace(overrides.workspace ? std::move(overrides.workspace) : makeWorkspace()),
      m_metadata(overrides.metadata ? std::move(overrides.metadata) : makeMetadata()),
      m_tools(overrides.tools ? std::move(overrides.tools) : std::make_unique<ShellToolRunner>()),
      m_safety(m_roots), m_deleter(m_safety, *m_admin), m_scanner(privacy),
      m_catalog(std::move(overrides.rules)), m_apps(m_roots, m_safety, privacy, *m_workspace, *m_metadata)
{
    const ToolRunner& tools = *m_tools;
    m_services.emplace(ModelServices{
        .home = m_roots.home,
        .safety = m_safety,
        .deleter = m_deleter,
        .scanner = m_scanner,
        .catalog = m_catalog,
        .apps = m_apps,
        .runCommands = [&tools](const QList<CleanItem>& items) { return runCommands(tools, items); },
        .quit = overrides.quit ? std::move(overrides.quit) : ModelServices::Quitter(askToQuit),
        .haptics = {},
    });
}

CommandOutcome Backends::runCommands(const ToolRunner& tools, const QList<CleanItem>& items)
{
    CommandOutcome outcome;
    for (const CleanItem& item : items) {
        const auto* command = std::get_if<CleanItem::Command>(&item.action);
        if (!command)
            continue;
        if (tools.run(command->program, command->arguments, std::chrono::minutes(10)).status == 0)
            outcome.freed = checkedAdd(outcome.freed, item.size);
        else
            outcome.failed.append(item.name);
    }
    return outcome;
}

} // namespace nubo
