#pragma once

#include "platform/Workspace.h"

namespace nubo {

/// The Linux desktop's workspace. Addresses open through the desktop services (xdg-open
/// underneath). Running applications are this user's processes from /proc (other users' cannot
/// be signalled or measured anyway), every one listed. A process whose executable lies in a
/// Mac-style bundle (X.app/Contents/MacOS/x) belongs to that bundle, the way the Mac's workspace
/// reports it, and the outermost such process of a bundle (its parent runs from elsewhere) is the
/// one regular application; copies and helpers it starts from its own bundle are listed as
/// non-regular, like a Mac app's helpers, so the activity list shows each application once
/// while the sampler still adds up all of its processes. Processes outside any bundle are listed
/// non-regular: without bundles Linux gives no reliable mark of "an application with a window",
/// and the sampler could not credit them anyway, since it groups processes by bundle path.
///
/// Quit is SIGTERM and force quit SIGKILL, sent only to a process of this user that still runs
/// from the application's bundle. Bringing to the front, hiding and showing need the window
/// manager and are not supported: they do nothing. The registry of installed applications is the freedesktop
/// one: an application with identifier org.example.Tool is installed when "org.example.Tool.desktop" lies in
/// one of the desktop's application folders.
class DesktopWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override;
    void reveal(const QString& path) override;
    [[nodiscard]] QList<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<QString> applicationLocation(const QString& bundleIdentifier) const override;
    [[nodiscard]] bool canActivate() const override;
    [[nodiscard]] bool canHide() const override;
    void activate(const RunningApplication& app) override;
    void hide(const RunningApplication& app) override;
    void unhide(const RunningApplication& app) override;
    void terminate(const RunningApplication& app) override;
    void forceTerminate(const RunningApplication& app) override;

    /// The bundle an executable runs from: the innermost "<name>.app" folder directly above
    /// "Contents/MacOS"; empty when the path is not inside such a bundle.
    [[nodiscard]] static QString bundleOfExecutable(const QString& executable);
};

} // namespace nubo
