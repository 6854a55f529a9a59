#pragma once

#include "platform/Workspace.h"

namespace nubo {

/// The Linux desktop's workspace. Addresses open through the desktop services (xdg-open
/// underneath). Running applications are this user's processes from /proc; a process whose
/// executable lies in a Mac-style bundle (X.app/Contents/MacOS/x) belongs to that bundle, the way
/// the Mac's workspace reports it. The registry of installed applications is the freedesktop one:
/// an application with identifier org.example.Tool is installed when "org.example.Tool.desktop"
/// lies in one of the desktop's application folders.
class DesktopWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override;
    [[nodiscard]] QList<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<QString> applicationLocation(const QString& bundleIdentifier) const override;

    /// The bundle an executable runs from: the innermost "<name>.app" folder directly above
    /// "Contents/MacOS"; empty when the path is not inside such a bundle.
    [[nodiscard]] static QString bundleOfExecutable(const QString& executable);
};

} // namespace nubo
