#include "core/maintenance/MaintenanceCatalog.h"

#include "core/admin/Admin.h"
#include "core/shell/ToolRunner.h"

#include <QStringList>

namespace nubo {

namespace {

QList<MaintenanceTask> buildTable()
{
    const auto task = [](const char* id, QString title, QString detail, const char* symbol, NamedColor color,
                         bool needsAdmin, std::optional<QString> caution, QString command) {
        return MaintenanceTask{QString::fromLatin1(id),
                               std::move(title),
                               std::move(detail),
                               QString::fromLatin1(symbol),
                               color,
                               needsAdmin,
                               std::move(caution),
                               std::move(command)};
    };
    return {
        task("snapshots", QStringLiteral("Borrar instantáneas locales"),
             QStringLiteral("Copias de Time Machine guardadas en el disco. Pueden ocupar varios GB."),
             "clock.arrow.trianglehead.counterclockwise.rotate.90", NamedColor::green, true, std::nullopt,
             // Thinning by more bytes than any disk holds, at the highest urgency, removes every
             // local snapshot the system is willing to give up.
             QStringLiteral("/usr/bin/tmutil thinlocalsnapshots / 999999999999 4")),
        task("purge", QStringLiteral("Liberar memoria"),
             QStringLiteral("Vacía la memoria inactiva y la caché de disco."), "memorychip.fill",
             NamedColor::purple, true, std::nullopt, QStringLiteral("/usr/sbin/purge")),
        task("dns", QStringLiteral("Vaciar caché DNS"),
             QStringLiteral("Arregla webs que no cargan o apuntan a una dirección antigua."), "network",
             NamedColor::blue, true, std::nullopt,
             QStringLiteral("/usr/bin/dscacheutil -flushcache; /usr/bin/killall -HUP mDNSResponder")),
        task("launchservices", QStringLiteral("Reconstruir «Abrir con»"),
             QStringLiteral("Quita apps duplicadas o borradas del menú «Abrir con»."),
             "arrow.up.forward.app.fill", NamedColor::indigo, false, std::nullopt,
             QString::fromLatin1(MaintenanceCatalog::kLsregister) +
                 QStringLiteral(" -kill -r -domain local -domain system -domain user")),
        task("spotlight", QStringLiteral("Reindexar Spotlight"),
             QStringLiteral("Úsalo si la búsqueda no encuentra archivos que existen."), "magnifyingglass",
             NamedColor::gray, true, QStringLiteral("Spotlight tardará un rato en volver a indexar todo."),
             QStringLiteral("/usr/bin/mdutil -E /")),
        task("fonts", QStringLiteral("Limpiar caché de fuentes"),
             QStringLiteral("Corrige texto que se ve mal o fuentes que no aparecen."), "textformat",
             NamedColor::orange, false, QStringLiteral("Conviene reiniciar el Mac después."),
             QStringLiteral("/usr/bin/atsutil databases -removeUser; /usr/bin/atsutil server -shutdown; "
                            "/usr/bin/atsutil server -ping")),
        task("verify", QStringLiteral("Verificar el disco"),
             QStringLiteral("Comprueba que el volumen no tiene errores (sólo lectura)."),
             "internaldrive.fill", NamedColor::teal, false, std::nullopt,
             QStringLiteral("/usr/sbin/diskutil verifyVolume /")),
        task("dock", QStringLiteral("Reiniciar Dock y Finder"),
             QStringLiteral("Refresca iconos y ventanas que se han quedado colgados."), "dock.rectangle",
             NamedColor::cyan, false, std::nullopt,
             QStringLiteral("/usr/bin/killall Dock; /usr/bin/killall Finder")),
    };
}

} // namespace

MaintenanceCatalog::MaintenanceCatalog(SystemTools tools, const ToolRunner& runner, AdminRunner& admin)
    : m_tools(std::move(tools)), m_runner(runner), m_admin(admin)
{
}

const QList<MaintenanceTask>& MaintenanceCatalog::all()
{
    static const QList<MaintenanceTask> table = buildTable();
    return table;
}

std::optional<MaintenanceTask> MaintenanceCatalog::task(const QString& id)
{
    for (const MaintenanceTask& task : all()) {
        if (task.id == id)
            return task;
    }
    return std::nullopt;
}

int MaintenanceCatalog::countSnapshots(const QString& listing)
{
    int count = 0;
    const QStringList lines = listing.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (line.contains(QLatin1String("com.apple.TimeMachine")))
            ++count;
    }
    return count;
}

int MaintenanceCatalog::localSnapshotCount() const
{
    const ShellResult result = m_runner.run(
        m_tools.tmutil, {QStringLiteral("listlocalsnapshots"), QStringLiteral("/")}, kSnapshotTimeout);
    // A refused or half-finished listing says nothing reliable; the row then shows none.
    return result.status == 0 ? countSnapshots(result.output) : 0;
}

MaintenanceTask::Outcome MaintenanceCatalog::outcomeOf(const MaintenanceTask& task, const ShellResult& result)
{
    if (result.status == 0)
        return {true,
                task.id == QLatin1String("verify") ? QStringLiteral("Sin errores") : QStringLiteral("Hecho")};

    // Tools end their lines with "\r\n" now and then, and pad with blanks; neither is a reason.
    QString last;
    const QStringList lines = result.output.split(QLatin1Char('\n'));
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        const QString trimmed = line->trimmed();
        if (!trimmed.isEmpty()) {
            last = trimmed;
            break;
        }
    }
    return {false, last.isEmpty() ? QStringLiteral("Error") : last};
}

MaintenanceTask::Outcome MaintenanceCatalog::run(const MaintenanceTask& task, StopToken stop) const
{
    if (task.needsAdmin) {
        // A refused prompt and a failed command read the same: the user learns nothing more
        // from the system's error, and nothing is retried.
        const bool ok = Admin::run(m_admin, task.command);
        return {ok, ok ? QStringLiteral("Hecho") : QStringLiteral("Cancelado")};
    }
    const ShellResult result = m_runner.run(m_tools.shell, {QStringLiteral("-c"), task.command}, kTaskTimeout, stop);
    // Ended by the user's "Cancelar": whatever the tool printed as it went is not its outcome.
    if (stop.stopRequested())
        return {false, QStringLiteral("Cancelado")};
    return outcomeOf(task, result);
}

} // namespace nubo
