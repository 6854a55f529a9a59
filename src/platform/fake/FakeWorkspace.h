#pragma once

#include "platform/Workspace.h"

#include <QHash>
#include <QStringList>

#include <mutex>

namespace nubo {

/// A workspace for tests: records what it was asked to do and answers from what the test put in
/// it. Fill it before handing it to the code under test; reading it is then safe from any thread.
class FakeWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override { openedUrls << url; }
    void reveal(const QString& path) override { revealedPaths << path; }

    QList<RunningApplication> runningApplications() const override
    {
        const std::lock_guard lock(m_runningMutex);
        return running;
    }
    /// The application quits, as it would while background work watches the list; `listed` keeps
    /// it in the list marked as ended, as the Mac does for a moment.
    void quit(qint64 pid, bool listed = false)
    {
        const std::lock_guard lock(m_runningMutex);
        for (RunningApplication& app : running)
            app.terminated = app.terminated || (listed && app.pid == pid);
        if (!listed)
            running.removeIf([pid](const RunningApplication& app) { return app.pid == pid; });
    }

    std::optional<QString> applicationLocation(const QString& bundleIdentifier) const override
    {
        const auto found = applications.constFind(bundleIdentifier);
        if (found == applications.constEnd())
            return std::nullopt;
        return *found;
    }

    bool canActivate() const override { return windowActions; }
    bool canHide() const override { return windowActions; }
    void activate(const RunningApplication& app) override { record("activate", app); }
    void hide(const RunningApplication& app) override { record("hide", app); }
    void unhide(const RunningApplication& app) override { record("unhide", app); }
    void terminate(const RunningApplication& app) override { record("terminate", app); }
    void forceTerminate(const RunningApplication& app) override { record("forceTerminate", app); }

    QStringList openedUrls;
    QStringList revealedPaths;
    QList<RunningApplication> running;
    bool windowActions = true;
    /// The actions asked for, in order, as "<action> <pid>" ("hide 42").
    QStringList actions;
    /// Bundle identifier (exact case) → application location, as the system's registry would say.
    QHash<QString, QString> applications;
    /// Path → the name the file manager would show; set before background work reads it.
    QHash<QString, QString> displayNames;

protected:
    std::optional<QString> systemDisplayName(const QString& path) const override
    {
        const auto found = displayNames.constFind(path);
        return found == displayNames.constEnd() ? std::nullopt : std::optional<QString>(*found);
    }

private:
    mutable std::mutex m_runningMutex;
    void record(const char* action, const RunningApplication& app)
    {
        actions << QString::fromLatin1(action) + QLatin1Char(' ') + QString::number(app.pid);
    }
};

} // namespace nubo
