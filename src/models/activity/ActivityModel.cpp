#include "models/activity/ActivityModel.h"
#include "models/apps/AppsTexts.h"

#include "core/format/CheckedMath.h"
#include "platform/Accessibility.h"
#include "platform/LoginItem.h"
#include "platform/ProcessTable.h"
#include "platform/Workspace.h"

#include <QDebug>
#include <QDir>
#include <QVariantMap>
#include <algorithm>
#include <mutex>

namespace nubo {

// What a refresh needs on the thread pool. Shared with the running job, so a model destroyed
// mid-refresh leaves the job a live sampler; the job's result is then simply never published.
struct ActivityModel::Sampling
{
    Sampling(const Workspace& apps, const ProcessTable& table, std::shared_ptr<const void> services)
        : workspace(apps), processes(table), owner(std::move(services)), sampler(table)
    {
    }

    Snapshot take()
    {
        QList<RunningApplication> kept;
        for (const RunningApplication& app : workspace.runningApplications()) {
            // Background agents, accessory apps and helpers have no place in the list.
            if (app.regular && !app.terminated && app.pid > 0 &&
                app.pid <= std::numeric_limits<qint32>::max())
                kept << app;
        }
        QList<UsageSampler::App> pairs;
        for (const RunningApplication& app : kept) {
            if (!app.bundlePath.isEmpty())
                pairs.append({qint32(app.pid), app.bundlePath});
        }
        Snapshot snapshot;
        QHash<qint32, UsageSampler::Usage> usage;
        {
            // The model never starts two refreshes at once; this only makes that a guarantee.
            const std::lock_guard lock(mutex);
            usage = sampler.sample(pairs);
        }
        snapshot.memory = UsageSampler::systemMemory(processes);
        snapshot.apps.reserve(kept.size());
        for (const RunningApplication& app : kept) {
            const UsageSampler::Usage figures = usage.value(qint32(app.pid));
            snapshot.apps.append({qint32(app.pid), app.name, app.bundlePath, figures.cpu, figures.memory,
                                  app.hidden, app.active});
        }
        return snapshot;
    }

    const Workspace& workspace;
    const ProcessTable& processes;
    std::shared_ptr<const void> owner;
    std::mutex mutex;
    UsageSampler sampler;
};

namespace {

QVariantList toVariant(const QList<AppUsage>& apps)
{
    QVariantList list;
    list.reserve(apps.size());
    for (const AppUsage& app : apps)
        list << ActivityModel::appMap(app);
    return list;
}

} // namespace

QVariantMap ActivityModel::appMap(const AppUsage& app)
{
    QVariantMap map = AppsTexts::badge(app.name, app.bundleURL);
    map.insert({{QStringLiteral("pid"), app.pid},
                {QStringLiteral("name"), app.name},
                {QStringLiteral("bundleURL"), app.bundleURL},
                {QStringLiteral("cpu"), app.cpu},
                {QStringLiteral("memory"), app.memory},
                {QStringLiteral("isHidden"), app.isHidden},
                {QStringLiteral("isActive"), app.isActive}});
    return map;
}

QString ActivityModel::label(Sort sort)
{
    return sort == Sort::cpu ? QStringLiteral("CPU") : QStringLiteral("Memoria");
}

QStringList ActivityModel::sortLabels()
{
    return {label(Sort::cpu), label(Sort::memory)};
}

std::optional<ActivityModel::Sort> ActivityModel::sortFromLabel(const QString& text)
{
    for (const Sort sort : {Sort::cpu, Sort::memory}) {
        if (text == label(sort))
            return sort;
    }
    return std::nullopt;
}

ActivityModel::ActivityModel(Services services, QObject* parent)
    : QObject(parent), m_services(services),
      m_sampling(std::make_shared<Sampling>(services.workspace, services.processes, services.owner)),
      m_launchAtLogin(services.loginItem.isRegistered()),
      m_lastAccessibility(services.accessibility.isTrusted())
{
    m_loop.setSingleShot(true);
    m_loop.setInterval(m_services.interval);
    connect(&m_loop, &QTimer::timeout, this, &ActivityModel::refresh);
    m_bump.setSingleShot(true);
    m_bump.setInterval(m_services.bumpDelay);
    connect(&m_bump, &QTimer::timeout, this, &ActivityModel::refresh);
}

ActivityModel::~ActivityModel() = default;

QList<AppUsage> ActivityModel::sorted() const
{
    QList<AppUsage> list = m_apps;
    if (m_sort == Sort::cpu)
        std::stable_sort(list.begin(), list.end(),
                         [](const AppUsage& a, const AppUsage& b) { return a.cpu > b.cpu; });
    else
        std::stable_sort(list.begin(), list.end(),
                         [](const AppUsage& a, const AppUsage& b) { return a.memory > b.memory; });
    return list;
}

QVariantList ActivityModel::appsList() const
{
    return toVariant(m_apps);
}

QVariantList ActivityModel::sortedList() const
{
    return toVariant(sorted());
}

void ActivityModel::setSort(Sort sort)
{
    if (sort == m_sort)
        return;
    m_sort = sort;
    emit sortChanged();
    emit sortedChanged();
}

void ActivityModel::setSortLabel(const QString& text)
{
    if (const std::optional<Sort> sort = sortFromLabel(text))
        setSort(*sort);
}

double ActivityModel::totalCPU() const
{
    double total = 0;
    for (const AppUsage& app : m_apps)
        total += app.cpu;
    return total;
}

bool ActivityModel::hasAccessibility() const
{
    return m_services.accessibility.isTrusted();
}

bool ActivityModel::canActivate() const
{
    return m_services.workspace.canActivate();
}

bool ActivityModel::canHide() const
{
    return m_services.workspace.canHide();
}

bool ActivityModel::canMinimize() const
{
    return m_services.accessibility.isSupported();
}

void ActivityModel::start()
{
    if (m_started)
        return;
    m_started = true;
    refresh();
}

void ActivityModel::refresh()
{
    if (m_refreshing) {
        m_refreshAgain = true;
        return;
    }
    m_refreshing = true;
    m_loop.stop();
    m_jobs.start(
        QStringLiteral("sample"), [sampling = m_sampling](StopToken) { return sampling->take(); },
        [this](const Snapshot& snapshot) { publish(snapshot); }, [this] { publish(Snapshot{m_apps, m_memory}); });
}

void ActivityModel::publish(const Snapshot& snapshot)
{
    if (snapshot.apps != m_apps) {
        m_apps = snapshot.apps;
        emit appsChanged();
        emit sortedChanged();
    }
    if (snapshot.memory != m_memory) {
        m_memory = snapshot.memory;
        emit memoryChanged();
    }
    noteAccessibility();
    if (!m_hasSampled) {
        m_hasSampled = true;
        emit hasSampledChanged();
    }
    m_refreshing = false;
    emit refreshed();
    if (m_refreshAgain) {
        m_refreshAgain = false;
        refresh();
    } else if (m_started) {
        m_loop.start();
    }
}

void ActivityModel::bump()
{
    m_bump.start();
}

const AppUsage* ActivityModel::listed(int pid) const
{
    for (const AppUsage& app : m_apps) {
        if (app.pid == pid)
            return &app;
    }
    return nullptr;
}

std::optional<RunningApplication> ActivityModel::lookUp(const AppUsage& app) const
{
    return lookUp(app, m_services.workspace.runningApplications());
}

std::optional<RunningApplication> ActivityModel::lookUp(const AppUsage& app,
                                                        const QList<RunningApplication>& all)
{
    // The id alone could name another program by now; the bundle must still match.
    const QString bundle = app.bundleURL.isEmpty() ? QString() : QDir::cleanPath(app.bundleURL);
    for (const RunningApplication& running : all) {
        if (running.pid != app.pid || running.terminated)
            continue;
        const QString runningBundle =
            running.bundlePath.isEmpty() ? QString() : QDir::cleanPath(running.bundlePath);
        if (bundle.isEmpty() || runningBundle == bundle)
            return running;
    }
    return std::nullopt;
}

void ActivityModel::act(const AppUsage& app, void (Workspace::*action)(const RunningApplication&),
                        bool supported)
{
    if (!supported)
        return;
    const std::optional<RunningApplication> running = lookUp(app);
    if (!running)
        return;
    (m_services.workspace.*action)(*running);
    bump();
}

void ActivityModel::activate(const AppUsage& app)
{
    act(app, &Workspace::activate, canActivate());
}

void ActivityModel::hide(const AppUsage& app)
{
    act(app, &Workspace::hide, canHide());
}

void ActivityModel::unhide(const AppUsage& app)
{
    act(app, &Workspace::unhide, canHide());
}

void ActivityModel::quit(const AppUsage& app)
{
    act(app, &Workspace::terminate, true);
}

void ActivityModel::forceQuit(const AppUsage& app)
{
    act(app, &Workspace::forceTerminate, true);
}

void ActivityModel::minimize(const AppUsage& app)
{
    if (!canMinimize() || !trusted())
        return;
    minimizeInTurn({app.pid});
}

void ActivityModel::activate(int pid)
{
    if (const AppUsage* app = listed(pid))
        activate(*app);
}

void ActivityModel::hide(int pid)
{
    if (const AppUsage* app = listed(pid))
        hide(*app);
}

void ActivityModel::unhide(int pid)
{
    if (const AppUsage* app = listed(pid))
        unhide(*app);
}

void ActivityModel::quit(int pid)
{
    if (const AppUsage* app = listed(pid))
        quit(*app);
}

void ActivityModel::forceQuit(int pid)
{
    if (const AppUsage* app = listed(pid))
        forceQuit(*app);
}

void ActivityModel::minimize(int pid)
{
    if (const AppUsage* app = listed(pid))
        minimize(*app);
}

void ActivityModel::minimizeAll()
{
    if (!canMinimize() || !trusted())
        return;
    QList<qint64> pids;
    for (const AppUsage& app : m_apps) {
        if (app.pid != m_services.ownPid)
            pids << app.pid;
    }
    // Minimising does not change the list, so no bump follows.
    minimizeInTurn(pids);
}

void ActivityModel::hideAll()
{
    if (!canHide())
        return;
    const QList<RunningApplication> running = m_services.workspace.runningApplications();
    for (const AppUsage& app : m_apps) {
        if (app.pid == m_services.ownPid)
            continue;
        if (const std::optional<RunningApplication> found = lookUp(app, running))
            m_services.workspace.hide(*found);
    }
    bump();
}

bool ActivityModel::trusted()
{
    if (m_services.accessibility.isTrusted())
        return true;
    const bool granted = m_services.accessibility.requestTrust();
    noteAccessibility();
    return granted;
}

void ActivityModel::minimizeInTurn(QList<qint64> pids)
{
    if (pids.isEmpty())
        return;
    // Accessibility belongs on this thread; each application is a message that may be slow to
    // answer, so one application per turn of the event loop keeps the window responsive.
    m_services.accessibility.minimizeWindows(pids.takeFirst());
    if (!pids.isEmpty())
        QTimer::singleShot(0, this, [this, pids = std::move(pids)]() mutable { minimizeInTurn(std::move(pids)); });
}

void ActivityModel::ensureAccessibility()
{
    if (!canMinimize() || m_services.accessibility.isTrusted())
        return;
    m_services.accessibility.requestTrust();
    noteAccessibility();
}

void ActivityModel::noteAccessibility()
{
    const bool now = m_services.accessibility.isTrusted();
    if (now == m_lastAccessibility)
        return;
    m_lastAccessibility = now;
    emit hasAccessibilityChanged();
}

void ActivityModel::setLaunchAtLogin(bool on)
{
    const bool done = on ? m_services.loginItem.registerApp() : m_services.loginItem.unregisterApp();
    m_launchAtLogin = m_services.loginItem.isRegistered();
    // The switch shows the outcome; the log keeps why it did not move, for a bug report.
    if (!done || m_launchAtLogin != on)
        qWarning().noquote() << QStringLiteral("Nubo: launch at login ") +
                                    (on ? QStringLiteral("could not be switched on")
                                        : QStringLiteral("could not be switched off"));
    // Always notified: a switch the user flipped must flip back when the system said no.
    emit launchAtLoginChanged();
}

} // namespace nubo
