#pragma once

#include "core/apps/AppCatalog.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/deletion/Deleter.h"
#include "core/files/SystemRoots.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "core/scanner/DiskScanner.h"
#include "models/app/AppState.h"
#include "models/app/Jobs.h"
#include "models/app/ModelServices.h"
#include "platform/fake/FakeAdminRunner.h"
#include "platform/fake/FakeMetadata.h"
#include "platform/fake/FakeVolumeCapacity.h"
#include "platform/fake/FakeWorkspace.h"
#include "platform/fake/ScriptedToolRunner.h"
#include "support/DesktopHome.h"

#include <QHash>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>

namespace nubo::test {

/// A whole machine in a temporary folder for the models: a home with its Library, the system
/// Library, an applications folder, and the real core services over them (safety gate, deleter,
/// scanner, catalogues), with fakes only where the platform answers (administrator prompt,
/// workspace, last-use dates, volume figures, quitting). The state is built on demand, so a test
/// can script the world first.
class ModelWorld : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Absolute path of a path relative to the temporary root.
    [[nodiscard]] QString path(const QString& relative) const;
    [[nodiscard]] QString home(const QString& relative) const
    {
        return path(QStringLiteral("home/") + relative);
    }
    /// Writes a file of `bytes` real bytes, creating its folders.
    void file(const QString& relative, qint64 bytes) const;
    void folder(const QString& relative) const;
    [[nodiscard]] bool exists(const QString& relative) const;
    /// Makes a file that not even the superuser may delete, until `release`; false when the file
    /// system cannot do it (the test then skips).
    [[nodiscard]] bool pin(const QString& relative);
    void release(const QString& relative);
    /// A fake application bundle with a real Info.plist.
    void bundle(const QString& relative, const QString& identifier, qint64 bytes) const;

    /// What a category's rule finds from now on (rules are read at every scan).
    void rule(const QString& categoryId, CleanCategory::Scan scan);

    AppState& state();

    QTemporaryDir m_dir;
    /// Set before SetUp, the world is a Linux desktop: Linux's safety rules, and applications
    /// that are the desktop entries of `m_desktop`, whose packaging answers through `m_tools`.
    HostSystem m_system = HostSystem::Mac;
    std::optional<DesktopHome> m_desktop;
    ScriptedToolRunner m_tools;
    SystemRoots m_roots;
    Privacy m_privacy{QStringLiteral("/nowhere"), [] { return true; }};
    FakeAdminRunner m_admin;
    FakeWorkspace m_workspace;
    FakeMetadata m_metadata;
    FakeVolumeCapacity m_volume;
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<Deleter> m_deleter;
    std::unique_ptr<DiskScanner> m_scanner;
    /// Set, a scan of the whole disk stays running (until the test ends) while the home's scans do not.
    std::shared_ptr<std::atomic<bool>> m_diskHeld = std::make_shared<std::atomic<bool>>(true);
    std::unique_ptr<CleanCatalog> m_catalog;
    std::unique_ptr<AppCatalog> m_apps;
    std::shared_ptr<ModelServices> m_services;
    std::unique_ptr<AppState> m_state;
    std::chrono::milliseconds m_toast = std::chrono::seconds(4);

    std::mutex m_rulesLock;
    QHash<QString, CleanCategory::Scan> m_rules;
    /// The command items the runner was handed, and the ids it is told to fail or hold.
    QList<CleanItem> m_commandsRun;
    /// Read while a clean runs; the list itself only once it has landed.
    std::atomic<int> m_commandsStarted = 0;
    QStringList m_failingCommands;
    /// The command lines run as the administrator, and whether the administrator's run succeeds.
    QStringList adminCommands() const;
    std::atomic<bool> m_adminSucceeds = true;
    QStringList m_heldCommands;
    /// Running applications the quitter has been asked to stop, and whether it lets them go.
    std::atomic<int> m_quitRequests = 0;
    std::atomic<bool> m_quitObeys = true;
    std::atomic<bool> m_quitStaysListed = false; ///< an application that quit stays listed, ended
    std::atomic<int> m_feedback = 0;
    QStringList m_pinned;

private:
    mutable std::mutex m_adminLock;
    QStringList m_adminCommands;
};

/// Every category id of the catalogue whose items start selected, or not.
[[nodiscard]] QStringList categoriesSelectedByDefault(bool selected);

} // namespace nubo::test
