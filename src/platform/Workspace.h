#pragma once

#include "core/files/NativePath.h"

#include <QList>
#include <QString>
#include <memory>
#include <optional>

namespace nubo {

/// One application process as the workspace lists it.
struct RunningApplication
{
    qint64 pid = 0;
    QString name;
    QString bundlePath; ///< the application bundle the process runs from; empty when it has none
    bool hidden = false;
    bool active = false;
    bool regular = false;    ///< an ordinary app with a window and a Dock icon, not a helper or agent
    bool terminated = false; ///< it has ended although the system still lists it

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

/// The desktop's workspace: opening addresses and settings pages, the running applications and
/// the registry of installed applications. Core code uses it only through this interface.
///
/// `runningApplications` and `applicationLocation` only read, and are safe from any thread: the
/// leftover search calls them from background work.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// Opens an address (a web page, a file, a settings page). Fire and forget: an address the
    /// platform cannot open does nothing.
    virtual void openUrl(const QString& url) = 0;
    /// Shows a file or folder in the file manager, selected where the platform can select it. The
    /// path is the exact one the scanner listed; a relative path does nothing.
    virtual void reveal(const QString& path) = 0;

    /// The application processes of this user, in the platform's order.
    [[nodiscard]] virtual QList<RunningApplication> runningApplications() const = 0;

    /// The name the file manager shows for a path (a hidden extension hidden, a system folder in
    /// the user's language); the last path component where the platform has no such name, or
    /// where the path holds bytes that are not UTF-8 and could not name the item to the system.
    /// Safe from any thread.
    [[nodiscard]] QString displayName(const QString& path) const
    {
        const QString plain = path.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
        if (NativePath::hasEscapedBytes(path))
            return plain;
        // A system that cannot name the item hands the path back as it came.
        const std::optional<QString> named = systemDisplayName(path);
        return named && !named->isEmpty() && *named != path ? *named : plain;
    }

    /// Whether the system holds a folder for a volume's root (a mount point), and whether it
    /// shows a folder as one item, a package; none where the platform has no such answer or the
    /// path is not UTF-8. Safe from any thread: the scanner asks from its walking threads.
    [[nodiscard]] std::optional<bool> isVolume(const QString& path) const
    {
        return NativePath::hasEscapedBytes(path) ? std::nullopt : systemIsVolume(path);
    }
    [[nodiscard]] std::optional<bool> isPackage(const QString& path) const
    {
        return NativePath::hasEscapedBytes(path) ? std::nullopt : systemIsPackage(path);
    }

    /// Where the system's registry of applications places the application with this bundle
    /// identifier, anywhere on the machine; none when it knows no such application.
    [[nodiscard]] virtual std::optional<QString>
    applicationLocation(const QString& bundleIdentifier) const = 0;

    /// Whether this platform can bring an application to the front, and hide and show it again.
    /// Where it cannot, `activate`, `hide` and `unhide` do nothing and views leave those actions out.
    [[nodiscard]] virtual bool canActivate() const = 0;
    [[nodiscard]] virtual bool canHide() const = 0;

    /// Actions on one running application, named by an entry `runningApplications` gave. Fire
    /// and forget: an application that has ended meanwhile is ignored. `terminate` asks it to
    /// quit (it may ask to save documents, or refuse); `forceTerminate` ends it at once. Called
    /// on the user-interface thread.
    virtual void activate(const RunningApplication& app) = 0;
    virtual void hide(const RunningApplication& app) = 0;
    virtual void unhide(const RunningApplication& app) = 0;
    virtual void terminate(const RunningApplication& app) = 0;
    virtual void forceTerminate(const RunningApplication& app) = 0;

protected:
    /// The file manager's own name for an existing path; none where the platform has no such
    /// service. Called from any thread.
    [[nodiscard]] virtual std::optional<QString> systemDisplayName(const QString& path) const
    {
        (void)path;
        return std::nullopt;
    }
    [[nodiscard]] virtual std::optional<bool> systemIsVolume(const QString& path) const
    {
        (void)path;
        return std::nullopt;
    }
    [[nodiscard]] virtual std::optional<bool> systemIsPackage(const QString& path) const
    {
        (void)path;
        return std::nullopt;
    }
};

/// The backend of the platform the program was built for.
[[nodiscard]] std::unique_ptr<Workspace> makeWorkspace();

} // namespace nubo
