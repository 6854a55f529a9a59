#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <optional>

namespace nubo::PackagingOutput {

/// Readers of what Linux's packaging tools print, each forgiving: a line in any other shape is
/// skipped, never guessed at, so a tool that changes its output gives fewer answers, not wrong
/// ones.

/// A Flatpak application as "flatpak list --app --columns=application,installation,version"
/// prints it, one line each, columns separated by tabs.
struct FlatpakApp
{
    QString id;
    QString installation; ///< "user", "system", or another installation's name
    QString version;      ///< may be empty: not every application declares one
    friend bool operator==(const FlatpakApp&, const FlatpakApp&) = default;
};
[[nodiscard]] QList<FlatpakApp> flatpakApps(const QString& output);

/// A snap as "snap list" prints it under its header: name, version and revision.
struct Snap
{
    QString name;
    QString version;
    QString revision;
    friend bool operator==(const Snap&, const Snap&) = default;
};
[[nodiscard]] QList<Snap> snaps(const QString& output);

/// The packages that own each path, from "dpkg-query -S <paths>": "vim-common: /usr/share/…",
/// or "a, b: /path" when several share it. Diversion notes are skipped.
[[nodiscard]] QHash<QString, QStringList> owners(const QString& output);

/// An installed package as "dpkg-query -W -f='${binary:Package}\t${Version}\t${Installed-Size}\n'"
/// prints it; the size is in kibibytes and absent when not a number.
struct Package
{
    QString name;
    QString version;
    std::optional<qint64> kibibytes;
    friend bool operator==(const Package&, const Package&) = default;
};
[[nodiscard]] QList<Package> packages(const QString& output);

/// The packages a simulated removal ("apt-get -s remove <package>") would take away, from its
/// "Remv <package> [<version>]" lines, architecture qualifiers dropped.
[[nodiscard]] QStringList removals(const QString& output);

/// Whether `name` may be handed to a packaging tool as one argument: a distribution package
/// ("vim-common", "libc6:amd64"), a snap ("firefox", "code_insiders") or a reverse-DNS Flatpak
/// id ("org.gnome.Maps"). Nothing that starts with "-" or holds a space, quote or slash passes.
[[nodiscard]] bool isPlainName(const QString& name);

} // namespace nubo::PackagingOutput
