#include "platform/linux/ThemeSymbolImages.h"

#include <QHash>
#include <QIcon>
#include <QStandardPaths>

namespace nubo {

namespace {

// Each SF Symbol the views use, with the freedesktop names that carry the same idea. Symbolic
// names come first: they read like SF Symbols (one colour, thin strokes).
const QHash<QString, QStringList>& symbolTable()
{
    static const QHash<QString, QStringList> table = [] {
        QHash<QString, QStringList> t;
        const auto add = [&t](const char* symbol, std::initializer_list<const char*> names) {
            QStringList list;
            for (const char* name : names)
                list << QString::fromUtf8(name);
            t.insert(QString::fromUtf8(symbol), list);
        };
        add("sparkles", {"user-home-symbolic", "go-home-symbolic", "starred"});
        add("circle.hexagongrid.fill", {"find-location-symbolic", "mark-location-symbolic", "view-grid"});
        add("bubbles.and.sparkles.fill", {"edit-clear-all-symbolic", "edit-clear-symbolic", "edit-clear"});
        add("square.stack.3d.up.fill", {"view-app-grid-symbolic", "preferences-desktop-apps-symbolic",
                                        "applications-other"});
        add("gauge.with.dots.needle.67percent", {"utilities-system-monitor-symbolic",
                                                 "gnome-power-manager-symbolic", "utilities-system-monitor"});
        add("speedometer", {"power-profile-performance-symbolic", "emblem-system-symbolic", "system-run"});
        add("internaldrive", {"drive-harddisk-symbolic", "drive-harddisk"});
        add("wind", {"weather-windy-symbolic", "weather-few-clouds-symbolic"});
        add("hammer.fill", {"applications-engineering-symbolic", "applications-development"});
        add("clock.arrow.circlepath", {"document-open-recent-symbolic", "view-refresh-symbolic"});
        add("film.fill", {"video-x-generic-symbolic", "video-x-generic"});
        add("photo.fill", {"image-x-generic-symbolic", "image-x-generic"});
        add("music.note", {"audio-x-generic-symbolic", "audio-x-generic"});
        add("doc.zipper", {"package-x-generic-symbolic", "package-x-generic"});
        add("doc.text.fill", {"x-office-document-symbolic", "text-x-generic-symbolic", "text-x-generic"});
        add("gearshape.fill", {"preferences-system-symbolic", "emblem-system-symbolic", "preferences-system"});
        add("folder.fill", {"folder-symbolic", "folder"});
        add("doc.fill", {"text-x-generic-symbolic", "text-x-generic"});
        // Cleanup and apps screens: the categories, item and removal icons, and their controls.
        add("internaldrive.fill", {"drive-harddisk-symbolic", "drive-harddisk"});
        add("doc.text.magnifyingglass", {"edit-find-symbolic", "text-x-generic-symbolic"});
        add("trash.fill", {"user-trash-symbolic", "user-trash"});
        add("paperclip", {"mail-attachment-symbolic"});
        add("iphone.gen3", {"phone-apple-iphone-symbolic", "phone-symbolic", "phone"});
        add("ipad.and.iphone", {"computer-apple-ipad-symbolic", "phone-symbolic"});
        add("cpu.fill", {"power-profile-performance-symbolic", "computer-symbolic", "computer"});
        add("shippingbox.fill", {"package-x-generic-symbolic", "package-x-generic"});
        add("archivebox.fill", {"media-floppy-symbolic", "package-x-generic-symbolic"});
        add("cube.box.fill", {"insert-object-symbolic", "package-x-generic-symbolic"});
        add("shippingbox.and.arrow.backward.fill", {"package-x-generic-symbolic", "package-x-generic"});
        add("arrow.down.app.fill", {"folder-download-symbolic", "folder-download"});
        add("tray.and.arrow.down.fill", {"document-save-symbolic", "folder-download-symbolic"});
        add("doc.badge.clock.fill", {"document-open-recent-symbolic", "document-open-recent"});
        add("iphone.and.arrow.forward", {"phone-symbolic", "phone"});
        add("puzzlepiece.extension.fill", {"application-x-addon-symbolic", "application-x-addon"});
        add("chevron.right", {"pan-end-symbolic", "go-next-symbolic", "go-next"});
        add("chevron.left", {"pan-start-symbolic", "go-previous-symbolic", "go-previous"});
        add("magnifyingglass", {"system-search-symbolic", "edit-find-symbolic", "edit-find"});
        add("terminal.fill", {"utilities-terminal-symbolic", "utilities-terminal"});
        add("app.fill", {"application-x-executable-symbolic", "application-x-executable"});
        add("globe", {"web-browser-symbolic", "network-workgroup-symbolic"});
        add("doc.text", {"text-x-generic-symbolic", "text-x-generic"});
        add("bolt.fill", {"thunderbolt-symbolic", "media-flash-symbolic"});
        add("arrow.up.arrow.down", {"view-sort-descending-symbolic", "view-sort-descending"});
        add("arrow.clockwise", {"view-refresh-symbolic", "view-refresh"});
        add("lock.fill", {"system-lock-screen-symbolic", "changes-prevent-symbolic"});
        add("checkmark.circle.fill",
            {"emblem-ok-symbolic", "emblem-default-symbolic", "emblem-default", "object-select-symbolic"});
        add("exclamationmark.triangle.fill", {"dialog-warning-symbolic", "dialog-warning"});
        add("checkmark", {"object-select-symbolic", "emblem-ok-symbolic"});
        add("minus", {"list-remove-symbolic", "value-decrease-symbolic"});
        // Window shell, home screen, permission guidance and the menu-bar panel.
        add("exclamationmark.lock.fill", {"system-lock-screen-symbolic", "security-low-symbolic"});
        add("lock.shield.fill", {"security-high-symbolic", "system-lock-screen-symbolic"});
        add("hand.raised.fill", {"security-medium-symbolic", "security-high-symbolic"});
        add("checkmark.seal.fill", {"emblem-ok-symbolic", "object-select-symbolic"});
        add("square.stack.3d.up.slash.fill", {"view-app-grid-symbolic", "applications-other"});
        add("ellipsis.circle", {"view-more-horizontal-symbolic", "open-menu-symbolic"});
        add("bubbles.and.sparkles", {"edit-clear-all-symbolic", "edit-clear-symbolic"});
        add("eye.slash", {"view-conceal-symbolic"});
        add("rectangle.stack.badge.minus", {"window-minimize-symbolic"});
        add("arrow.down.circle", {"software-update-available-symbolic", "system-software-install-symbolic"});
        add("power", {"system-shutdown-symbolic", "application-exit-symbolic"});
        add("xmark", {"window-close-symbolic", "process-stop-symbolic"});
        add("exclamationmark.octagon", {"process-stop-symbolic", "dialog-warning-symbolic"});
        add("macwindow", {"focus-windows-symbolic", "window-new-symbolic"});
        // The space map
        add("house", {"user-home-symbolic", "go-home-symbolic", "user-home"});
        add("folder", {"folder-symbolic", "folder"});
        add("arrow.up", {"go-up-symbolic", "go-up"});
        add("stop.fill", {"media-playback-stop-symbolic", "process-stop-symbolic", "process-stop"});
        add("sidebar.right", {"sidebar-show-right-symbolic", "view-dual-symbolic", "view-paged-symbolic"});
        add("chevron.down", {"pan-down-symbolic", "go-down-symbolic"});
        add("chevron.compact.right", {"pan-end-symbolic", "go-next-symbolic"});
        add("finder", {"system-file-manager-symbolic", "folder-open-symbolic", "system-file-manager"});
        add("arrow.up.forward.app", {"document-open-symbolic", "document-open"});
        add("doc.on.doc", {"edit-copy-symbolic", "edit-copy"});
        add("checkmark.circle", {"emblem-ok-symbolic", "object-select-symbolic"});
        add("minus.circle", {"list-remove-symbolic", "value-decrease-symbolic"});
        add("lock", {"changes-prevent-symbolic", "system-lock-screen-symbolic", "emblem-readonly"});
        add("info.circle", {"dialog-information-symbolic", "help-about-symbolic", "dialog-information"});
        add("trash", {"user-trash-symbolic", "edit-delete-symbolic", "user-trash"});
        // Activity and performance screens
        add("cpu", {"system-run-symbolic", "utilities-system-monitor"});
        add("memorychip", {"media-flash-symbolic", "drive-removable-media-symbolic"});
        add("memorychip.fill", {"media-flash-symbolic", "drive-removable-media-symbolic"});
        add("eye", {"view-reveal-symbolic"});
        add("xmark.circle.fill", {"dialog-error-symbolic", "process-stop-symbolic", "dialog-error"});
        add("app", {"application-x-executable-symbolic", "application-x-executable"});
        add("gearshape.2.fill", {"emblem-system-symbolic", "preferences-system-symbolic"});
        add("clock.arrow.trianglehead.counterclockwise.rotate.90",
            {"document-open-recent-symbolic", "preferences-system-time-symbolic"});
        add("network", {"network-workgroup-symbolic", "network-wired-symbolic"});
        add("arrow.up.forward.app.fill", {"send-to-symbolic", "application-x-executable-symbolic"});
        add("textformat", {"preferences-desktop-font-symbolic", "font-x-generic-symbolic"});
        add("dock.rectangle", {"user-desktop-symbolic", "computer-symbolic"});
        return t;
    }();
    return table;
}

} // namespace

ThemeSymbolImages::ThemeSymbolImages()
{
    // Without a desktop session (Xvfb, offscreen) Qt knows neither a theme nor where themes live:
    // look in the XDG data folders and use Adwaita, which our set-up installs.
    QStringList paths = QIcon::themeSearchPaths();
    for (const QString& dir : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        const QString icons = dir + QStringLiteral("/icons");
        if (!paths.contains(icons))
            paths << icons;
    }
    QIcon::setThemeSearchPaths(paths);
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
}

QStringList ThemeSymbolImages::themeNames(const QString& symbol)
{
    return symbolTable().value(symbol);
}

QImage ThemeSymbolImages::render(const QString& symbol, const QSize& size) const
{
    const QSize target = size.isValid() ? size : QSize(32, 32);
    for (const QString& name : themeNames(symbol)) {
        if (!QIcon::hasThemeIcon(name))
            continue;
        const QImage image = QIcon::fromTheme(name).pixmap(target).toImage();
        if (!image.isNull())
            return image;
    }
    return neutralSymbolImage(target);
}

std::unique_ptr<SymbolImages> makeSymbolImages()
{
    return std::make_unique<ThemeSymbolImages>();
}

} // namespace nubo
