#pragma once

#include <QString>

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

} // namespace nubo::Permissions
