#pragma once

#include "core/apps/AppRemoval.h"
#include "core/apps/InstalledApp.h"
#include "core/files/HostSystem.h"

#include <QDateTime>
#include <QString>
#include <QVariantMap>
#include <optional>

namespace nubo::AppsTexts {

/// The apps screen's texts, built from the model's figures so the views only lay them out.

/// Under the title: "Buscando…" while the list loads, otherwise "<n> instaladas".
[[nodiscard]] QString headerLine(bool loading, qint64 count);
/// The sort menu's title: "Ordenar por " and the current order's label.
[[nodiscard]] QString sortTitle(const QString& sortLabel);
/// "Usada " and the day of the last use in the user's time zone, written the Spanish way
/// ("Usada 3 mar 2026"); empty when the last use is unknown.
[[nodiscard]] QString lastUsedLine(const std::optional<QDateTime>& lastUsed);
/// "Versión " and the version; empty when the bundle declares none.
[[nodiscard]] QString versionLine(const std::optional<QString>& version);
/// The label of one line of a removal: "Aplicación" for the bundle itself, otherwise the Spanish
/// name of the Library folder the leftover was found in (its item name), or that name unchanged
/// when it is not one of the well-known folders.
[[nodiscard]] QString removalLabel(const QString& itemName, bool isBundle);
/// The symbol drawn beside a removal line, by the same folder.
[[nodiscard]] QString removalSymbol(const QString& itemName, bool isBundle);
/// The detail of the application's own removal line: the packaging's command that removes it
/// ("flatpak uninstall org.gnome.Maps", "apt-get remove vim"), or the path deleted, in tilde form.
[[nodiscard]] QString removalDetail(const InstalledApp& app, const QString& home);
/// The tag beside the version that says where the application came from: "App Store", "Flatpak",
/// "Snap", "AppImage", "Paquete del sistema", "Instalada por ti"; empty for an ordinary bundle.
[[nodiscard]] QString originTag(const InstalledApp& app);
/// Above the removal list: what it holds, naming the system's folder for what apps leave.
[[nodiscard]] QString removalNote(HostSystem system);
/// Before an application is chosen: what the uninstaller finds, in the system's words.
[[nodiscard]] QString emptyNote(HostSystem system);
/// Why `app` is not offered for removal, in a sentence; empty when it is.
[[nodiscard]] QString refusal(const AppRemoval& removal, const InstalledApp& app);
/// The uninstall button: "Desinstalar" and what it frees ("Desinstalar · 1,2 GB"); just
/// "Desinstalar" when nothing can be removed.
[[nodiscard]] QString uninstallLabel(std::optional<qint64> removalSize);
/// The letter of the tile drawn for an application the platform gives no icon for: the first
/// letter or digit of its name, in capitals; "?" when it has none.
[[nodiscard]] QString initial(const QString& name);
/// The hue (0 to 1) of that tile: the same name always gets the same colour, on every run.
[[nodiscard]] double tileHue(const QString& name);
/// What a view needs to draw an application's icon: "iconSource" (the system's picture of
/// `path`), and "initial" and "hue" for the tile shown where there is none.
[[nodiscard]] QVariantMap badge(const QString& name, const QString& path);

} // namespace nubo::AppsTexts
