#pragma once

#include <QVariantMap>

class QQmlApplicationEngine;
class QQuickWindow;

namespace nubo {

class AppState;

namespace UiEngine {

/// Prepares an engine for Nubo's views: import paths, the symbol image provider.
void configure(QQmlApplicationEngine& engine);

/// Loads the main window for `state`; nullptr when the QML failed to load.
QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppState& state);

} // namespace UiEngine
} // namespace nubo
