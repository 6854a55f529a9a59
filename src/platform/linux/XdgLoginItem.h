#pragma once

#include "platform/LoginItem.h"

#include <QString>

namespace nubo {

/// Opening at login on a freedesktop session: an autostart entry "nubo.desktop" in
/// "~/.config/autostart" that starts this program's executable, a copy of the installed desktop
/// entry (so the session's list of startup programs shows Nubo's name and icon) when there is one. The program counts as
/// registered only while that entry exists, is not switched off ("Hidden=true" or
/// "X-GNOME-Autostart-enabled=false") and starts exactly this executable, so an entry left
/// behind by a moved copy reads as off rather than as a promise that will not be kept.
///
/// An executable path that an entry cannot carry faithfully (control characters, bytes that
/// are not UTF-8) is never registered: the switch stays off.
class XdgLoginItem final : public LoginItem
{
public:
    /// `home` is the user's home folder; `executable` the program to start at login;
    /// `installedEntry` the program's installed desktop entry, if any.
    XdgLoginItem(QString home, QString executable, QString installedEntry = {});

    [[nodiscard]] bool isRegistered() const override;
    bool registerApp() override;
    bool unregisterApp() override;

    /// Where the entry lives.
    [[nodiscard]] QString entryPath() const;

    /// The "Exec" value that starts `executable` with no arguments, quoted and escaped for a
    /// desktop entry; empty when the path cannot be written into one.
    [[nodiscard]] static QString execValue(const QString& executable);
    /// The autostart entry made from the text of an installed entry, starting `exec`.
    [[nodiscard]] static QString autostartEntry(const QString& installed, const QString& exec);

private:
    QString m_home;
    QString m_executable;
    QString m_installedEntry;
};

} // namespace nubo
