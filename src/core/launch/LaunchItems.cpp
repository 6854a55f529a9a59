#include "core/launch/LaunchItems.h"

#include "core/admin/Admin.h"
#include "core/admin/ShellQuote.h"
#include "core/deletion/Deleter.h"
#include "core/files/FolderListing.h"
#include "core/files/Location.h"
#include "core/naming/Naming.h"
#include "core/plist/PropertyList.h"
#include "core/shell/ToolRunner.h"
#include "platform/Workspace.h"

#include <QCollator>
#include <QRegularExpression>
#include <QVariantList>

#include <algorithm>

namespace nubo {

namespace {

const QString kPlistSuffix = QStringLiteral(".plist");

// A non-empty text value of the dictionary, none for anything else.
std::optional<QString> textOf(const QVariant& value)
{
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    QString text = value.toString();
    if (text.isEmpty())
        return std::nullopt;
    return text;
}

QString programOf(const QVariantMap& dictionary)
{
    if (const auto program = textOf(dictionary.value(QStringLiteral("Program"))))
        return *program;
    const QVariant arguments = dictionary.value(QStringLiteral("ProgramArguments"));
    if (arguments.typeId() == QMetaType::QVariantList) {
        const QVariantList list = arguments.toList();
        if (!list.isEmpty())
            return textOf(list.first()).value_or(QString());
    }
    return {};
}

} // namespace

LaunchItems::LaunchItems(SystemTools tools, const ToolRunner& runner, AdminRunner& admin,
                         const Deleter& deleter, const Naming& naming, Workspace& workspace)
    : m_tools(std::move(tools)), m_runner(runner), m_admin(admin), m_deleter(deleter), m_naming(naming),
      m_workspace(workspace)
{
}

QSet<QString> LaunchItems::parseDisabled(const QString& output)
{
    static const QRegularExpression verdict(QStringLiteral("\\b(disabled|true)\\b"));
    QSet<QString> labels;
    const QStringList lines = output.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const qsizetype open = line.indexOf(QLatin1Char('"'));
        const qsizetype close = open < 0 ? -1 : line.indexOf(QLatin1Char('"'), open + 1);
        if (close < 0)
            continue;
        const QString label = line.mid(open + 1, close - open - 1);
        if (!label.isEmpty() && verdict.match(line.mid(close + 1)).hasMatch())
            labels.insert(label);
    }
    return labels;
}

QSet<QString> LaunchItems::parseLoaded(const QString& output)
{
    // PID (or "-" when not running), last exit status (or "-"), label. The header reads
    // "PID Status Label" and fails the first column.
    static const QRegularExpression row(QStringLiteral("^\\s*(?:-|\\d+)\\s+(?:-|-?\\d+)\\s+(\\S.*?)\\s*$"));
    QSet<QString> labels;
    const QStringList lines = output.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (const QRegularExpressionMatch match = row.match(line); match.hasMatch())
            labels.insert(match.captured(1));
    }
    return labels;
}

QSet<QString> LaunchItems::disabledLabels(const QString& domain) const
{
    const ShellResult result =
        m_runner.run(m_tools.launchctl, {QStringLiteral("print-disabled"), domain}, kListTimeout);
    return result.status == 0 ? parseDisabled(result.output) : QSet<QString>{};
}

QSet<QString> LaunchItems::loadedLabels() const
{
    const ShellResult result = m_runner.run(m_tools.launchctl, {QStringLiteral("list")}, kListTimeout);
    return result.status == 0 ? parseLoaded(result.output) : QSet<QString>{};
}

QList<LaunchItem> LaunchItems::load() const
{
    const QSet<QString> disabledForUser = disabledLabels(m_tools.guiDomain());
    const QSet<QString> disabledForSystem = disabledLabels(QStringLiteral("system"));
    const QSet<QString> loaded = loadedLabels();

    const std::pair<LaunchItem::Scope, QString> folders[] = {
        {LaunchItem::Scope::user, m_tools.userAgents},
        {LaunchItem::Scope::agent, m_tools.agents},
        {LaunchItem::Scope::daemon, m_tools.daemons},
    };
    QList<LaunchItem> items;
    for (const auto& [scope, folder] : folders) {
        if (folder.isEmpty())
            continue;
        // Names that are not valid UTF-8 are left out by the listing: such a file could not be
        // named back to launchctl or the deleter, so it is never offered.
        std::optional<QStringList> names = FolderListing::names(folder);
        if (!names)
            continue;
        // The file system's order is arbitrary; a fixed one keeps equal names in a stable order.
        std::sort(names->begin(), names->end());
        const QSet<QString>& disabled =
            scope == LaunchItem::Scope::daemon ? disabledForSystem : disabledForUser;
        for (const QString& entry : std::as_const(*names)) {
            if (!entry.endsWith(kPlistSuffix) || entry.size() == kPlistSuffix.size())
                continue;
            if (std::optional<LaunchItem> item =
                    read(folder + QLatin1Char('/') + entry, scope, disabled, loaded))
                items << std::move(*item);
        }
    }

    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(items.begin(), items.end(), [&collator](const LaunchItem& a, const LaunchItem& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return items;
}

std::optional<LaunchItem> LaunchItems::read(const QString& path, LaunchItem::Scope scope,
                                            const QSet<QString>& disabled, const QSet<QString>& loaded) const
{
    // An empty map is what an unreadable, damaged or non-dictionary file reads as; a dictionary
    // with nothing in it defines no job either.
    const QVariantMap dictionary = PropertyList::readDictionary(path);
    if (dictionary.isEmpty())
        return std::nullopt;

    LaunchItem item;
    item.url = path;
    item.scope = scope;
    // launchd refuses a job without a label; the file name is what such a file is known by.
    const QString fileName = path.section(QLatin1Char('/'), -1);
    item.label =
        textOf(dictionary.value(QStringLiteral("Label"))).value_or(fileName.chopped(kPlistSuffix.size()));
    item.program = programOf(dictionary);
    const QVariant disabledKey = dictionary.value(QStringLiteral("Disabled"));
    const bool markedDisabled = disabledKey.typeId() == QMetaType::Bool && disabledKey.toBool();
    item.isEnabled = !markedDisabled && !disabled.contains(item.label);
    item.isLoaded = loaded.contains(item.label);
    name(item);
    return item;
}

void LaunchItems::name(LaunchItem& item) const
{
    const qsizetype app = item.program.indexOf(QLatin1String(".app/"));
    if (app >= 0) {
        const QString bundle = item.program.left(app + 4);
        // The file manager hides the extension: Foo.app is shown as Foo.
        const QString shown = bundle.section(QLatin1Char('/'), -1).chopped(4);
        if (!shown.isEmpty()) {
            item.name = shown;
            item.appURL = bundle;
            return;
        }
    }
    const Naming::Resolved resolved = m_naming.resolve(item.label);
    item.name = resolved.name.isEmpty() ? item.label : resolved.name;
    if (!resolved.appUrl.isEmpty())
        item.appURL = resolved.appUrl;
}

QString LaunchItems::guiTarget(const QString& label) const
{
    return m_tools.guiDomain() + QLatin1Char('/') + label;
}

QString LaunchItems::daemonToggleCommand(const LaunchItem& item, bool enabled)
{
    const QString label = shellQuote(item.label);
    // The trailing "true" makes the line succeed when the job already was in the state asked
    // for (bootout of a stopped job, bootstrap of a running one both fail).
    if (enabled)
        return QStringLiteral("/bin/launchctl enable system/") + label +
               QStringLiteral("; /bin/launchctl bootstrap system ") + shellQuote(item.url) +
               QStringLiteral(" 2>/dev/null; true");
    return QStringLiteral("/bin/launchctl disable system/") + label +
           QStringLiteral("; /bin/launchctl bootout system/") + label + QStringLiteral(" 2>/dev/null; true");
}

QString LaunchItems::daemonBootoutCommand(const QString& label)
{
    return QStringLiteral("/bin/launchctl bootout system/") + shellQuote(label) +
           QStringLiteral(" 2>/dev/null; true");
}

bool LaunchItems::setEnabled(const LaunchItem& item, bool enabled) const
{
    if (item.needsAdmin())
        return Admin::run(m_admin, daemonToggleCommand(item, enabled));

    // Both steps are the user's own and ask nothing, so the change counts as made: the second
    // fails whenever the job already was in that state, and the next reading of the list shows
    // what launchd kept.
    const QString target = guiTarget(item.label);
    (void)m_runner.run(m_tools.launchctl,
                       {enabled ? QStringLiteral("enable") : QStringLiteral("disable"), target}, kActionTimeout);
    if (enabled)
        (void)m_runner.run(m_tools.launchctl, {QStringLiteral("bootstrap"), m_tools.guiDomain(), item.url},
                           kActionTimeout);
    else
        (void)m_runner.run(m_tools.launchctl, {QStringLiteral("bootout"), target}, kActionTimeout);
    return true;
}

bool LaunchItems::remove(const LaunchItem& item) const
{
    if (item.needsAdmin()) {
        // The command line succeeds whether or not the job was running, so false here means the
        // prompt was refused: the user said no, and the file stays.
        if (!Admin::run(m_admin, daemonBootoutCommand(item.label)))
            return false;
    } else {
        (void)m_runner.run(m_tools.launchctl, {QStringLiteral("bootout"), guiTarget(item.label)},
                           kActionTimeout);
    }
    const DeletionResult result =
        m_deleter.deleteItems({{item.url, Location::allocatedSize(item.url)}}, true);
    return result.failed.isEmpty() && result.deleted.contains(item.url);
}

void LaunchItems::openLoginItemsSettings() const
{
    m_workspace.openUrl(QString::fromLatin1(kLoginItemsSettings));
}

} // namespace nubo
