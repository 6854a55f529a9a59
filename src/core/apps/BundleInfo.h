#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace nubo::BundleInfo {

/// The information dictionary of the bundle at `nativePath` (the path as the system spells it,
/// so bundles whose names are not UTF-8 can still be read): "Contents/Info.plist" for the
/// bundles of a Mac (applications, extensions, services), else "Info.plist" at the top for the
/// shallow bundles of iPhone and iPad applications. A path that is not a folder, a bundle
/// without a dictionary or with a damaged one: an empty map.
[[nodiscard]] QVariantMap dictionary(const QByteArray& nativePath);

/// The same, for a path held as text.
[[nodiscard]] QVariantMap dictionary(const QString& path);

/// The text value of `key`, none when it is missing or not text.
[[nodiscard]] std::optional<QString> text(const QVariantMap& dictionary, const QString& key);

/// The bundle's declared identifier ("CFBundleIdentifier"), none when it declares none.
[[nodiscard]] std::optional<QString> identifier(const QVariantMap& dictionary);

} // namespace nubo::BundleInfo
