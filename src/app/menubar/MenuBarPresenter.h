#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <memory>

class QQmlEngine;
class QSystemTrayIcon;

namespace nubo {

class AppState;
class ShellController;
class SymbolImages;

/// Puts the menu-bar panel on screen: a tray icon ("wind") that opens and closes the panel
/// under it where the desktop has a tray, and the panel on request (from the app's menu)
/// everywhere. The panel is one frameless window made once and shown again each time.
class MenuBarPresenter : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MenuBarPresenter)

public:
    /// Makes the panel's window in `engine`. With `useTray` (only where the desktop has a tray and
    /// the application is a widgets application) the tray icon is added and the controller is
    /// told so; `symbols` draws its icon and must outlive the presenter.
    MenuBarPresenter(QQmlEngine& engine, AppState& state, ShellController& controller,
                     const SymbolImages& symbols, bool useTray, QObject* parent = nullptr);
    ~MenuBarPresenter() override;

    /// The panel's window; nullptr when its QML failed to load.
    [[nodiscard]] QQuickWindow* panel() const { return m_panel; }
    [[nodiscard]] bool hasTray() const { return m_tray != nullptr; }

    /// Shows the panel under the tray icon, or at the top right of the screen when the icon's
    /// place is unknown; hides it when it is showing.
    void toggle();
    void show();

private:
    std::unique_ptr<QObject> m_window;
    QPointer<QQuickWindow> m_panel;
    std::unique_ptr<QSystemTrayIcon> m_tray;
    /// Since the panel last went away; a click on the tray icon first takes the focus from the
    /// panel (which hides it) and then arrives as a toggle, which must not reopen it.
    QElapsedTimer m_sinceHidden;
};

} // namespace nubo
