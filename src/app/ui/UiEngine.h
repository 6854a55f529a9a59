#pragma once

#include <QVariantMap>

#include <memory>

class QQmlApplicationEngine;
class QQuickWindow;

namespace nubo {

class AppIcons;
class AppState;
class ShellController;

namespace UiEngine {

/// Prepares an engine for Nubo's views: import paths, the symbol and application icon providers
/// (the application icons from `icons`, or the platform's when none is given).
void configure(QQmlApplicationEngine& engine, std::shared_ptr<const AppIcons> icons = {});

/// Loads the main window for `state`, with the menu commands of `shell` when given; nullptr when
/// the QML failed to load.
QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppState& state, ShellController* shell = nullptr);

/// Ties the main window to the controller: its appearing and closing set the program's presence,
/// a request shows it again (raised and active), and the application becoming active refreshes
/// the disk figures.
void attachShell(QQuickWindow& window, ShellController& shell);

} // namespace UiEngine
} // namespace nubo
