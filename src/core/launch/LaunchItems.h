#pragma once

#include "core/launch/LaunchItem.h"
#include "core/maintenance/SystemTools.h"

#include <QList>
#include <QSet>
#include <QStringList>

#include <chrono>

namespace nubo {

class AdminRunner;
class Deleter;
class Naming;
class ToolRunner;
class Workspace;

/// Finds the launch agents and daemons installed on the Mac and switches them on, off, or away
/// with the system's `launchctl`. Agents (the user's own and those of every user) are changed
/// as the user in the user's gui domain; daemons only through one administrator command line.
///
/// Holds references to the services it is given, which must outlive it, and no state of its
/// own. Every operation but `openLoginItemsSettings` blocks on processes or the password prompt:
/// call them from background work.
class LaunchItems
{
public:
    /// How long a listing by `launchctl` may take before it counts as failed.
    static constexpr std::chrono::seconds kListTimeout{5};
    static constexpr std::chrono::seconds kActionTimeout{60};

    LaunchItems(SystemTools tools, const ToolRunner& runner, AdminRunner& admin, const Deleter& deleter,
                const Naming& naming, Workspace& workspace);

    /// Every readable property list of the three folders (the user's agents, everyone's agents,
    /// the daemons, in that order), sorted by name, localised and case-insensitive, with a stable
    /// sort. Unreadable folders and files are skipped; a failing `launchctl` only leaves labels
    /// out of the disabled and loaded sets.
    [[nodiscard]] QList<LaunchItem> load() const;

    /// The labels `launchctl print-disabled <domain>` marks disabled; empty when it fails.
    [[nodiscard]] QSet<QString> disabledLabels(const QString& domain) const;

    /// The labels `launchctl list` names; empty when it fails.
    [[nodiscard]] QSet<QString> loadedLabels() const;

    /// Enables or disables the item persistently and starts or stops its job. A daemon goes
    /// through one administrator command line that succeeds whatever state the job was in, so
    /// the answer is whether the prompt was accepted. An agent is changed in the user's gui
    /// domain without a prompt, which always answers true: the next reading of the list tells
    /// whether launchd kept the change.
    [[nodiscard]] bool setEnabled(const LaunchItem& item, bool enabled) const;

    /// Stops the job, then deletes its property list through the deletion service (which asks
    /// for the administrator where the file is not the user's). True when the file is gone. A
    /// refused prompt to stop a daemon leaves everything as it was.
    [[nodiscard]] bool remove(const LaunchItem& item) const;

    /// Opens the system's login-items settings page.
    void openLoginItemsSettings() const;

    /// Labels marked disabled in `launchctl print-disabled` output: in each line, the text
    /// between the first two double quotes, when the rest of the line says "disabled" (newer
    /// systems) or "true" (older ones).
    [[nodiscard]] static QSet<QString> parseDisabled(const QString& output);

    /// Labels named in `launchctl list` output: lines of a process id (or "-"), a status and the
    /// label, separated by blanks. The header and lines of any other shape are ignored.
    [[nodiscard]] static QSet<QString> parseLoaded(const QString& output);

    /// The administrator command line that enables or disables a daemon.
    [[nodiscard]] static QString daemonToggleCommand(const LaunchItem& item, bool enabled);

    /// The administrator command line that stops a daemon.
    [[nodiscard]] static QString daemonBootoutCommand(const QString& label);

    static constexpr const char* kLoginItemsSettings =
        "x-apple.systempreferences:com.apple.LoginItems-Settings.extension";

private:
    [[nodiscard]] std::optional<LaunchItem> read(const QString& path, LaunchItem::Scope scope,
                                                 const QSet<QString>& disabled,
                                                 const QSet<QString>& loaded) const;
    void name(LaunchItem& item) const;
    [[nodiscard]] QString guiTarget(const QString& label) const;

    SystemTools m_tools;
    const ToolRunner& m_runner;
    AdminRunner& m_admin;
    const Deleter& m_deleter;
    const Naming& m_naming;
    Workspace& m_workspace;
};

} // namespace nubo
