#include "ModelWorld.h"

#include "core/shell/Shell.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace nubo::test {

void ModelWorld::SetUp()
{
    ASSERT_TRUE(m_dir.isValid());
    for (const char* name : {"home/Library/Caches", "home/Applications", "Library", "tmp", "Applications"})
        folder(QString::fromUtf8(name));
    m_roots = SystemRoots{path(QStringLiteral("home")), path(QStringLiteral("Library")),
                          path(QStringLiteral("tmp")), path(QStringLiteral("Applications")),
                          path(QStringLiteral("System/Applications"))};
    m_volume.answer = {1'000'000'000'000, 250'000'000'000, 200'000'000'000};
    SafetyRules rules = m_system == HostSystem::Mac ? SafetyRules::forMac() : SafetyRules::forLinux();
    if (m_system == HostSystem::Linux)
        rules.sharedTemporaries = {m_roots.temporary};
    m_safety = std::make_unique<Safety>(m_roots, rules);
    m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
    DiskScanner::Services scanning;
    // A whole-disk scan waits two levels below the disk's root while the disk is held, so a test
    // can watch it run and stop it however small and fast the disk is. The test's own tree never
    // waits.
    scanning.isGated = [held = m_diskHeld, root = m_dir.path()](const QString& path) {
        for (int turn = 0; turn < 1000 && held->load() && path.count(QLatin1Char('/')) >= 2 && !path.startsWith(root);
             ++turn)
            QThread::msleep(10);
        return false;
    };
    m_scanner = std::make_unique<DiskScanner>(scanning);
    m_catalog = std::make_unique<CleanCatalog>([this](const QString& id) {
        return CleanCategory::Scan([this, id] {
            CleanCategory::Scan scan;
            {
                const std::lock_guard lock(m_rulesLock);
                scan = m_rules.value(id);
            }
            return scan ? scan() : QList<CleanItem>();
        });
    }, m_system);
    if (m_system == HostSystem::Mac) {
        m_apps = std::make_unique<AppCatalog>(m_roots, *m_safety, m_privacy, m_workspace, m_metadata);
    } else {
        m_desktop.emplace(m_dir.path());
        m_apps = std::make_unique<AppCatalog>(m_roots, *m_safety, m_privacy, m_workspace, m_metadata,
                                              m_desktop->places(), m_tools);
    }
    m_services = std::make_shared<ModelServices>(ModelServices{
        .home = m_roots.home,
        .safety = *m_safety,
        .deleter = *m_deleter,
        .scanner = *m_scanner,
        .catalog = *m_catalog,
        .apps = *m_apps,
        .runCommands =
            [this](const QList<CleanItem>& items, StopToken stop) {
                CommandOutcome outcome;
                for (const CleanItem& item : items) {
                    if (stop.stopRequested())
                        break;
                    m_commandsRun.append(item);
                    ++m_commandsStarted;
                    // A held command runs until it is stopped, like a tool the user cancels.
                    for (int turn = 0; m_heldCommands.contains(item.id) && turn < 1000; ++turn) {
                        if (stop.stopRequested())
                            return outcome;
                        QThread::msleep(10);
                    }
                    if (m_failingCommands.contains(item.id)) {
                        outcome.failed.append(item.id);
                    } else {
                        outcome.freed += item.size;
                        outcome.done.append(item.id);
                    }
                }
                return outcome;
            },
        .runAsAdministrator =
            [this](const QString& commandLine) {
                const std::lock_guard lock(m_adminLock);
                m_adminCommands.append(commandLine);
                return m_adminSucceeds.load();
            },
        .quit =
            [this](const RunningApplication& app) {
                ++m_quitRequests;
                if (m_quitObeys)
                    m_workspace.quit(app.pid, m_quitStaysListed);
            },
        .haptics = [this](Feedback) { ++m_feedback; },
        .progressInterval = std::chrono::milliseconds(120),
        .quitPollInterval = std::chrono::milliseconds(100),
        .quitPolls = 30,
        .workspace = &m_workspace,
    });
}

QStringList ModelWorld::adminCommands() const
{
    const std::lock_guard lock(m_adminLock);
    return m_adminCommands;
}

void ModelWorld::TearDown()
{
    m_diskHeld->store(false);
    m_state.reset();
    // Work the state left running may still use the world's services.
    EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    for (const QString& pinned : std::as_const(m_pinned))
        release(pinned);
}

QString ModelWorld::path(const QString& relative) const
{
    return m_dir.path() + QLatin1Char('/') + relative;
}

void ModelWorld::file(const QString& relative, qint64 bytes) const
{
    const QString full = path(relative);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(full).path()));
    QFile out(full);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    ASSERT_EQ(out.write(QByteArray(bytes, 'x')), bytes);
}

void ModelWorld::folder(const QString& relative) const
{
    ASSERT_TRUE(QDir().mkpath(path(relative)));
}

bool ModelWorld::exists(const QString& relative) const
{
    return QFileInfo::exists(path(relative)) || QFileInfo(path(relative)).isSymLink();
}

bool ModelWorld::pin(const QString& relative)
{
#ifdef Q_OS_MACOS
    const ShellResult done =
        Shell::run(QStringLiteral("/usr/bin/chflags"), {QStringLiteral("schg"), path(relative)});
#else
    const ShellResult done =
        Shell::run(QStringLiteral("/usr/bin/chattr"), {QStringLiteral("+i"), path(relative)});
#endif
    if (done.status != 0)
        return false;
    m_pinned.append(relative);
    return true;
}

void ModelWorld::release(const QString& relative)
{
#ifdef Q_OS_MACOS
    (void)Shell::run(QStringLiteral("/usr/bin/chflags"), {QStringLiteral("noschg"), path(relative)});
#else
    (void)Shell::run(QStringLiteral("/usr/bin/chattr"), {QStringLiteral("-i"), path(relative)});
#endif
}

void ModelWorld::bundle(const QString& relative, const QString& identifier, qint64 bytes) const
{
    file(relative + QStringLiteral("/Contents/MacOS/binary"), bytes);
    QFile plist(path(relative + QStringLiteral("/Contents/Info.plist")));
    ASSERT_TRUE(plist.open(QIODevice::WriteOnly));
    plist.write(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                               "<plist version=\"1.0\"><dict>"
                               "<key>CFBundleIdentifier</key><string>%1</string>"
                               "<key>CFBundleShortVersionString</key><string>1.0</string>"
                               "</dict></plist>\n")
                    .arg(identifier)
                    .toUtf8());
}

void ModelWorld::rule(const QString& categoryId, CleanCategory::Scan scan)
{
    const std::lock_guard lock(m_rulesLock);
    m_rules.insert(categoryId, std::move(scan));
}

AppState& ModelWorld::state()
{
    if (!m_state)
        m_state =
            std::make_unique<AppState>(AppState::Services{m_privacy, m_volume, m_toast, m_services});
    return *m_state;
}

QStringList categoriesSelectedByDefault(bool selected)
{
    QStringList ids;
    for (const CleanCategory& row : CleanCatalog::rows()) {
        if (row.selectedByDefault == selected)
            ids.append(row.id);
    }
    return ids;
}

} // namespace nubo::test
