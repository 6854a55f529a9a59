#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace nubo {

class AppShell;
class AppState;

/// The program's behaviour around its windows, decided here and carried out by the platform's
/// shell integration and the window glue: a Dock presence while the main window is shown and
/// only the menu-bar icon after it closes, the main window shown again when the user reopens the
/// program, fresh disk figures whenever the program becomes active, and the menu commands
/// (scan again, up one level, check for updates, the panel, quit).
class ShellController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shell controller is created once at start-up")
    Q_DISABLE_COPY_MOVE(ShellController)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates CONSTANT)
    Q_PROPERTY(bool canGoUp READ canGoUp NOTIFY canGoUpChanged)
    Q_PROPERTY(bool hasTray READ hasTray WRITE setHasTray NOTIFY hasTrayChanged)
    Q_PROPERTY(bool nativeMenus READ nativeMenus WRITE setNativeMenus NOTIFY nativeMenusChanged)

public:
    /// Both are borrowed and must outlive the controller.
    ShellController(AppState& state, AppShell& shell, QObject* parent = nullptr);

    /// Hands the reopen handler to the platform and starts the update service's schedule.
    void start();

    [[nodiscard]] bool canCheckForUpdates() const;
    [[nodiscard]] bool canGoUp() const;
    /// Whether the panel lives under a menu-bar (tray) icon; without one the app's menu offers it.
    [[nodiscard]] bool hasTray() const { return m_hasTray; }
    void setHasTray(bool hasTray);
    /// Whether the platform's own menu bar carries the commands, so the window needs no menu.
    [[nodiscard]] bool nativeMenus() const { return m_nativeMenus; }
    void setNativeMenus(bool native);

    /// Whether closing the main window leaves the program running: only where the user can get
    /// back to it, through the tray icon or the platform's reopening (the Dock).
    [[nodiscard]] bool keepsRunningWithoutWindow(bool platformReopens) const
    {
        return m_hasTray || platformReopens;
    }

    /// "Escanear de nuevo": the map scans its current scope again; the pane does not change.
    Q_INVOKABLE void rescan();
    /// "Subir un nivel" on the map.
    Q_INVOKABLE void goUp();
    /// "Buscar actualizaciones…"; nothing where there is no update service.
    Q_INVOKABLE void checkForUpdates();
    /// Brings the main window forward on the home pane, as a regular application.
    Q_INVOKABLE void openMainWindow();
    /// Shows the menu-bar panel (from the app's menu where there is no tray icon).
    Q_INVOKABLE void showPanel();
    /// "Salir de Nubo".
    Q_INVOKABLE void quit();

    /// The main window appeared or was closed.
    void mainWindowShown(bool shown);
    /// The program became the active application: the disk figures may be stale.
    void applicationActivated();

signals:
    void canGoUpChanged();
    void hasTrayChanged();
    void nativeMenusChanged();
    /// The glue shows, raises and activates the main window.
    void mainWindowRequested();
    void panelRequested();
    void quitRequested();

private:
    AppState& m_state;
    AppShell& m_shell;
    bool m_hasTray = false;
    bool m_nativeMenus = false;
};

} // namespace nubo
