#pragma once

#include <QVariantMap>

class QQmlApplicationEngine;
class QQuickWindow;

namespace nubo {

class AppState;
class ShellController;

namespace UiEngine {

/// Prepares an engine for Nubo's views: import paths, the symbol image provider.
void configure(QQmlApplicationEngine& engine);

/// Loads the main window for `state`, with the menu commands of `shell` when given; nullptr when
/// the QML failed to load.
QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppState& state, ShellController* shell = nullptr);

/// Ties the main window to the controller: its appearing and closing set the program's presence,
/// a request shows it again (raised and active), and the application becoming active refreshes
/// the disk figures.
void attachShell(QQuickWindow& window, ShellController& shell);

} // namespace UiEngine
} // namespace nubo
