#pragma once

#include "core/maintenance/MaintenanceTask.h"
#include "core/stop/StopToken.h"
#include "core/maintenance/SystemTools.h"
#include "core/shell/ShellResult.h"

#include <QList>

#include <chrono>


namespace nubo {

class AdminRunner;
class ToolRunner;

/// The eight maintenance tasks, the count of Time Machine's local snapshots shown beside the
/// first of them, and the running of a task into the outcome its row shows. The table is fixed;
/// an object of this class only carries the runners and tool paths a run needs, and keeps
/// references to both runners, which must outlive it.
///
/// `localSnapshotCount` and `run` block (processes, the password prompt): call them from
/// background work. Any number may run at once.
class MaintenanceCatalog
{
public:
    /// Launch Services' registration tool. It has no spaces, so task command lines use it unquoted.
    static constexpr const char* kLsregister = "/System/Library/Frameworks/CoreServices.framework/Frameworks/"
                                               "LaunchServices.framework/Support/lsregister";

    static constexpr std::chrono::seconds kSnapshotTimeout{10};
    static constexpr std::chrono::seconds kTaskTimeout{600};

    MaintenanceCatalog(SystemTools tools, const ToolRunner& runner, AdminRunner& admin);

    /// The tasks in display order, built once.
    [[nodiscard]] static const QList<MaintenanceTask>& all();

    /// The task with this id, none when the table has no such task.
    [[nodiscard]] static std::optional<MaintenanceTask> task(const QString& id);

    /// Local snapshots on the start-up volume as `tmutil listlocalsnapshots /` lists them. Never
    /// fails: a missing, slow (over ten seconds) or refused tool counts 0.
    [[nodiscard]] int localSnapshotCount() const;

    /// Runs `task`: behind the administrator prompt when it needs it ("Hecho", or "Cancelado"
    /// whether the prompt was refused or the command failed), otherwise through the shell as the
    /// user with a ten-minute limit (see `outcomeOf`).
    /// Asked to stop, a running tool is ended within about a tenth of a second and the outcome
    /// is "Cancelado"; a password prompt cannot be stopped and ends when the user answers it.
    [[nodiscard]] MaintenanceTask::Outcome run(const MaintenanceTask& task, StopToken stop = {}) const;

    /// The snapshot lines of a listing: non-empty lines naming "com.apple.TimeMachine".
    [[nodiscard]] static int countSnapshots(const QString& listing);

    /// What a run of `task` as the user reads as: on success "Sin errores" for the disk check and
    /// "Hecho" for the others (the output is not shown); on failure or time-out the last
    /// non-empty line the tool printed, so the user sees its own reason, or "Error" when it
    /// printed nothing.
    [[nodiscard]] static MaintenanceTask::Outcome outcomeOf(const MaintenanceTask& task,
                                                            const ShellResult& result);

private:
    SystemTools m_tools;
    const ToolRunner& m_runner;
    AdminRunner& m_admin;
};

} // namespace nubo
