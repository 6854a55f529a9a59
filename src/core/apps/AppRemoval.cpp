#include "core/apps/AppRemoval.h"

#include "core/admin/ShellQuote.h"
#include "core/apps/PackagingOutput.h"
#include "core/files/Location.h"
#include "core/shell/Shell.h"
#include "core/shell/ToolRunner.h"

#include <chrono>

namespace nubo {

namespace {

using namespace std::chrono_literals;

AppRemoval refused(AppRemoval::Refusal why, QStringList others = {})
{
    AppRemoval removal;
    removal.refusal = why;
    removal.others = std::move(others);
    return removal;
}

// The packaging's command, by the tool's full path; a missing tool is a refusal, never a guess.
AppRemoval commandFor(const InstalledApp& app, const QString& home, const QStringList& toolFolders,
                      const QString& tool, QStringList arguments, bool asAdministrator)
{
    const std::optional<QString> program = Shell::which(tool, toolFolders);
    if (!program)
        return refused(AppRemoval::Refusal::ToolMissing, {tool});
    AppRemoval removal;
    removal.item = CleanItem(app.url, app.name, Location::tildePath(app.url, home), app.size.value_or(0),
                             CleanItem::Command{*program, std::move(arguments)});
    removal.asAdministrator = asAdministrator;
    return removal;
}

} // namespace

AppRemoval AppRemoval::of(const InstalledApp& app, const QString& home, const QStringList& toolFolders)
{
    AppRemoval removal;
    const bool namedPlainly = PackagingOutput::isPlainName(app.package);
    switch (app.origin) {
    case AppOrigin::Bundle:
        removal.item = CleanItem(app.url, app.name, Location::tildePath(app.url, home), app.size.value_or(0),
                                 CleanItem::Remove{app.url});
        return removal;
    case AppOrigin::AppImage:
    case AppOrigin::Own: {
        // The program goes with its entry; a launcher whose program is not the user's own
        // file removes just the launcher.
        const QString path = app.payload.isEmpty() ? app.url : app.payload;
        removal.item = CleanItem(path, app.name, Location::tildePath(path, home), app.size.value_or(0),
                                 CleanItem::Remove{path});
        if (path != app.url)
            removal.item->companions << app.url;
        return removal;
    }
    case AppOrigin::Flatpak:
        if (!namedPlainly)
            return refused(Refusal::NotPackaged);
        return commandFor(app, home, toolFolders, QStringLiteral("flatpak"),
                          {QStringLiteral("uninstall"),
                           app.systemWide ? QStringLiteral("--system") : QStringLiteral("--user"),
                           QStringLiteral("--noninteractive"), QStringLiteral("-y"), app.package},
                          app.systemWide);
    case AppOrigin::Snap:
        if (!namedPlainly)
            return refused(Refusal::NotPackaged);
        return commandFor(app, home, toolFolders, QStringLiteral("snap"), {QStringLiteral("remove"), app.package}, true);
    case AppOrigin::Package:
        if (!namedPlainly)
            return refused(Refusal::NotPackaged);
        return commandFor(app, home, toolFolders, QStringLiteral("apt-get"),
                          {QStringLiteral("remove"), QStringLiteral("-y"), app.package}, true);
    case AppOrigin::Unmanaged:
        break;
    }
    return refused(Refusal::NotPackaged);
}

AppRemoval AppRemoval::confirmed(AppRemoval plan, const InstalledApp& app, const ToolRunner& tools)
{
    if (app.origin != AppOrigin::Package || !plan.item)
        return plan;
    // The simulation needs no rights and changes nothing; it lists every package the real
    // removal would take, dependants included.
    const ShellResult simulated = tools.run(std::get<CleanItem::Command>(plan.item->action).program,
                                            {QStringLiteral("-s"), QStringLiteral("remove"), app.package}, 60s);
    const QStringList removed = PackagingOutput::removals(simulated.output);
    if (simulated.status != 0 || !removed.contains(app.package))
        return refused(Refusal::PackagingSilent);
    QStringList others = removed;
    others.removeAll(app.package);
    if (!others.isEmpty())
        return refused(Refusal::TakesOthers, others);
    return plan;
}

QString AppRemoval::commandLine() const
{
    const auto* command = item ? std::get_if<CleanItem::Command>(&item->action) : nullptr;
    if (!command)
        return {};
    QStringList words{shellQuote(command->program)};
    for (const QString& argument : command->arguments)
        words << shellQuote(argument);
    return words.join(QLatin1Char(' '));
}

} // namespace nubo
