#pragma once

#include <QDateTime>
#include <QHashFunctions>
#include <QString>

#include <optional>

namespace nubo {

/// One application the user can remove, as found in an applications folder. A plain value, safe
/// to pass between threads; two are equal only when every field is. `url` (the bundle's path)
/// is its identity.
struct InstalledApp
{
    QString url;                     ///< the application bundle, a folder named "<name>.app"
    QString name;                    ///< the name shown: the bundle's file name without ".app"
    std::optional<QString> bundleID; ///< as the bundle declares it, case kept
    std::optional<QString> version;  ///< "CFBundleShortVersionString"
    bool isStore = false;            ///< holds an App Store receipt
    std::optional<qint64> size;      ///< allocated size of the bundle, once measured
    std::optional<QDateTime> lastUsed;

    [[nodiscard]] const QString& id() const { return url; }

    friend bool operator==(const InstalledApp&, const InstalledApp&) = default;
};

[[nodiscard]] size_t qHash(const InstalledApp& app, size_t seed = 0);

} // namespace nubo
