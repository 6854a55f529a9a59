#pragma once

#include <QDateTime>
#include <QHashFunctions>
#include <QString>
#include <optional>

namespace nubo {

/// How an application came onto the machine, which decides how it is removed: a Mac bundle is
/// deleted; on Linux a Flatpak, a snap or a distribution package goes through its own packaging,
/// an AppImage or a program of the user's own is deleted with its desktop entry, and anything
/// else is not removed at all.
enum class AppOrigin
{
    Bundle,
    Flatpak,
    Snap,
    AppImage,
    Package,
    Own,
    Unmanaged
};

/// One application the user can remove, as found in an applications folder or a desktop entry.
/// A plain value, safe to pass between threads; two are equal only when every field is. `url`
/// (the bundle's path, or the desktop entry's on Linux) is its identity.
struct InstalledApp
{
    QString url;                     ///< the application bundle ("<name>.app"), or the desktop entry
    QString name;                    ///< the name shown: the bundle's file name, or the entry's Name
    std::optional<QString> bundleID; ///< as the bundle declares it, case kept
    std::optional<QString> version;  ///< "CFBundleShortVersionString"
    bool isStore = false;            ///< holds an App Store receipt
    std::optional<qint64> size;      ///< allocated size of the bundle, once measured
    std::optional<QDateTime> lastUsed;
    AppOrigin origin = AppOrigin::Bundle;
    /// The packaging's name for it: the Flatpak id, the snap's name or the distribution package.
    QString package;
    /// A Flatpak of the system's installation rather than the user's.
    bool systemWide = false;
    /// What its size is measured on: the bundle, a Flatpak's deployed folder, a snap's file, an
    /// AppImage or the user's own program; empty when the packaging gave the size.
    QString payload;

    [[nodiscard]] const QString& id() const { return url; }

    friend bool operator==(const InstalledApp&, const InstalledApp&) = default;
};

[[nodiscard]] size_t qHash(const InstalledApp& app, size_t seed = 0);

} // namespace nubo
