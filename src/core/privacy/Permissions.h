#pragma once

#include <QString>

namespace nubo {
class Workspace;
}

namespace nubo::Permissions {

/// The settings page where the user grants Full Disk Access.
inline constexpr const char* kFullDiskAccessSettingsUrl =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles";

/// The macOS test for Full Disk Access: the privacy database under `home` opens for reading, or
/// else the Safari folder under `home` can be listed. Both are readable only with the grant.
[[nodiscard]] bool canReadProtectedData(const QString& home);

/// This platform's answer: the test above on a Mac. Elsewhere nothing guards the home folder
/// that way, so the answer is always yes and the gating rules, though present, never apply.
[[nodiscard]] bool hasFullDiskAccess(const QString& home);

/// Opens the settings page for Full Disk Access through the workspace (nothing happens where the
/// platform has no such page).
void openFullDiskAccessSettings(Workspace& workspace);

} // namespace nubo::Permissions
