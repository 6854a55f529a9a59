#pragma once

#include "core/cleanup/CleanItem.h"
#include "core/stop/StopToken.h"
#include "core/cleanup/CommandCleaners.h"
#include "platform/Workspace.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>

namespace nubo {

class AppCatalog;
class CleanCatalog;
class Deleter;
class DiskScanner;
class Safety;

/// The touch feedback a model gives after a user action; presentation only.
enum class Feedback
{
    Tap,
    Commit
};

using CommandCleaners::CommandOutcome;

/// Everything the map, cleanup and apps models need from the machine. The models and their
/// background work hold it through a shared pointer that keeps the services alive as long as any
/// of them runs. Production builds them in `Backends`; tests build real core services on a
/// temporary tree with fakes at the platform boundary. The functions may be empty.
struct ModelServices
{
    using Haptics = std::function<void(Feedback)>;
    /// Runs the command items of a clean one after another; blocking, called from background work.
    /// Asked to stop, it ends the running command and leaves the rest.
    using CommandRunner = std::function<CommandOutcome(const QList<CleanItem>& items, StopToken stop)>;
    /// Runs one shell command line as the administrator, behind one password prompt; true when it
    /// ran and succeeded. Blocking, called from background work.
    using AdministratorRun = std::function<bool(const QString& commandLine)>;
    /// Asks a running application to quit, politely (never forced). Called from background work.
    using Quitter = std::function<void(const RunningApplication& app)>;

    QString home;
    const Safety& safety;
    const Deleter& deleter;
    DiskScanner& scanner;
    const CleanCatalog& catalog;
    const AppCatalog& apps;
    CommandRunner runCommands;
    AdministratorRun runAsAdministrator;
    Quitter quit;
    Haptics haptics;
    /// How often the map copies a running scan's counts.
    std::chrono::milliseconds progressInterval = std::chrono::milliseconds(120);
    /// How long an uninstall waits between looks at a quitting application, and how many looks.
    std::chrono::milliseconds quitPollInterval = std::chrono::milliseconds(100);
    int quitPolls = 30;
    /// Shows items in the file manager; none offers no such button.
    Workspace* workspace = nullptr;
};

} // namespace nubo
