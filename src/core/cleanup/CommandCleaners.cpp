#include "core/cleanup/CommandCleaners.h"

#include "core/files/Location.h"
#include "core/format/CheckedMath.h"
#include "core/shell/ToolRunner.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace nubo::CommandCleaners {

namespace {

using namespace std::chrono_literals;

const QString& xcrun()
{
    static const QString path = QStringLiteral("/usr/bin/xcrun");
    return path;
}

// Udids and runtime identifiers are UUIDs. Anything else is refused before it can reach a delete
// command: "all" or "unavailable" would widen it, a leading "-" would make it an option, and a
// "/" or ".." would point the size measure at some other folder.
bool isUuid(const QString& text)
{
    static const QRegularExpression uuid(
        QStringLiteral("^[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}$"));
    return uuid.match(text).hasMatch();
}

std::optional<QJsonObject> jsonObject(const ShellResult& result)
{
    if (result.status != 0)
        return std::nullopt;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(result.output.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

QString platformName(const QString& platformIdentifier)
{
    const QString lower = platformIdentifier.toLower();
    if (lower.contains(QLatin1String("iphone")))
        return QStringLiteral("iOS");
    if (lower.contains(QLatin1String("watch")))
        return QStringLiteral("watchOS");
    if (lower.contains(QLatin1String("appletv")))
        return QStringLiteral("tvOS");
    if (lower.contains(QLatin1String("xr")))
        return QStringLiteral("visionOS");
    return QStringLiteral("Runtime");
}

} // namespace

QList<CleanItem> unavailableSimulators(const CleanContext& context)
{
    const std::optional<QJsonObject> root = jsonObject(context.tools.run(
        xcrun(),
        {QStringLiteral("simctl"), QStringLiteral("list"), QStringLiteral("devices"), QStringLiteral("unavailable"),
         QStringLiteral("-j")},
        20s));
    if (!root)
        return {};
    const QJsonObject devices = root->value(QLatin1String("devices")).toObject();
    const QString folder = context.home(QStringLiteral("Library/Developer/CoreSimulator/Devices/"));

    QList<CleanItem> items;
    for (auto runtime = devices.constBegin(); runtime != devices.constEnd(); ++runtime) {
        const QJsonArray list = runtime.value().toArray();
        for (const QJsonValue& value : list) {
            const QJsonObject device = value.toObject();
            const QString udid = device.value(QLatin1String("udid")).toString();
            if (!isUuid(udid))
                continue;
            const QJsonValue shown = device.value(QLatin1String("name"));
            const QString name = shown.isString() && !shown.toString().isEmpty() ? shown.toString()
                                                                                  : QStringLiteral("Simulador");
            const QString path = folder + udid;
            const qint64 size = Location::allocatedSize(path);
            // A device whose folder is gone or empty frees nothing worth a row.
            if (size < 1)
                continue;
            items << CleanItem(QStringLiteral("sim-") + udid, name + QStringLiteral(" (no disponible)"),
                               Location::tildePath(path, context.roots.home), size,
                               CleanItem::Command{xcrun(), {QStringLiteral("simctl"), QStringLiteral("delete"), udid}});
        }
    }
    return items;
}

QList<CleanItem> simulatorRuntimes(const CleanContext& context)
{
    const std::optional<QJsonObject> root = jsonObject(context.tools.run(
        xcrun(), {QStringLiteral("simctl"), QStringLiteral("runtime"), QStringLiteral("list"), QStringLiteral("-j")},
        20s));
    if (!root)
        return {};
    // A listing with anything but runtime objects inside is not the format we know.
    for (auto entry = root->constBegin(); entry != root->constEnd(); ++entry) {
        if (!entry.value().isObject())
            return {};
    }

    QList<CleanItem> items;
    for (auto entry = root->constBegin(); entry != root->constEnd(); ++entry) {
        const QString identifier = entry.key();
        const QJsonObject runtime = entry.value().toObject();
        if (runtime.value(QLatin1String("deletable")) == QJsonValue(false) || !isUuid(identifier))
            continue;
        const QString version = runtime.value(QLatin1String("version")).toString();
        const QString build = runtime.value(QLatin1String("build")).toString();
        const qint64 size = runtime.value(QLatin1String("sizeBytes")).toInteger(0);
        // Nothing to free, or a size that cannot be real: not worth a row.
        if (size < 1)
            continue;
        const QString platform = platformName(runtime.value(QLatin1String("platformIdentifier")).toString());
        items << CleanItem(QStringLiteral("rt-") + identifier,
                           platform + QLatin1Char(' ') + version + QStringLiteral(" (simulador)"), build, size,
                           CleanItem::Command{xcrun(),
                                              {QStringLiteral("simctl"), QStringLiteral("runtime"),
                                               QStringLiteral("delete"), identifier}});
    }
    return items;
}

qint64 parseDockerSize(const QString& text)
{
    static const std::pair<QLatin1String, double> units[] = {
        {QLatin1String("TB"), 1e12}, {QLatin1String("GB"), 1e9}, {QLatin1String("MB"), 1e6},
        {QLatin1String("kB"), 1e3},  {QLatin1String("KB"), 1e3}, {QLatin1String("B"), 1.0},
    };
    for (const auto& [unit, factor] : units) {
        if (!text.endsWith(unit))
            continue;
        bool ok = false;
        const double number = text.chopped(unit.size()).toDouble(&ok);
        if (!ok || !std::isfinite(number))
            return 0;
        const double bytes = number * factor;
        // Docker never reports negative sizes, and an exabyte is beyond any disk: such text is
        // noise, and adding it could only overflow the total.
        if (!(bytes >= 0) || bytes >= 1e18)
            return 0;
        return static_cast<qint64>(bytes);
    }
    return 0;
}

QList<CleanItem> dockerItems(const CleanContext& context)
{
    if (!context.findTool)
        return {};
    const std::optional<QString> docker = context.findTool(QStringLiteral("docker"));
    if (!docker || docker->isEmpty())
        return {};
    const ShellResult result = context.tools.run(
        *docker,
        {QStringLiteral("system"), QStringLiteral("df"), QStringLiteral("--format"),
         QStringLiteral("{{.Type}}\t{{.Reclaimable}}")},
        8s);
    if (result.status != 0)
        return {};

    qint64 total = 0;
    const QStringList lines = result.output.split(QLatin1Char('\n'));
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() != 2)
            continue;
        const QString first = fields.at(1).split(QLatin1Char(' ')).constFirst();
        const qint64 bytes = parseDockerSize(first);
        // Each figure is below an exabyte, so only a flood of lines could pass the limit: a
        // report like that is not believed at all.
        if (bytes > std::numeric_limits<qint64>::max() - total)
            return {};
        total += bytes;
    }
    if (total < 1)
        return {};
    return {CleanItem(QStringLiteral("docker-prune"), QStringLiteral("Datos recuperables de Docker"),
                      QStringLiteral("docker system prune -a"), total,
                      CleanItem::Command{*docker,
                                         {QStringLiteral("system"), QStringLiteral("prune"), QStringLiteral("-a"),
                                          QStringLiteral("-f")}})};
}

CommandOutcome runCommands(const ToolRunner& tools, const QList<CleanItem>& items, StopToken stop)
{
    CommandOutcome outcome;
    for (const CleanItem& item : items) {
        const auto* command = std::get_if<CleanItem::Command>(&item.action);
        if (!command)
            continue;
        if (stop.stopRequested())
            break;
        const ShellResult result = tools.run(command->program, command->arguments, 600s, stop);
        // A command ended because we were asked to stop neither freed nor failed.
        if (stop.stopRequested())
            break;
        if (result.status == 0) {
            outcome.freed = checkedAdd(outcome.freed, std::max<qint64>(item.size, 0));
            outcome.done << item.id;
        } else {
            outcome.failed << item.id;
        }
    }
    return outcome;
}

} // namespace nubo::CommandCleaners
