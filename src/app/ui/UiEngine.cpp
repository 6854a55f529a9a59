#include "app/ui/UiEngine.h"

#include "models/app/AppState.h"
#include "models/app/ShellController.h"
#include "app/icons/AppIconProvider.h"
#include "app/icons/SymbolImageProvider.h"
#include "platform/AppIcons.h"
#include "platform/SymbolImages.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

// Both QML modules are static libraries: importing their plugins keeps the linker from dropping
// their type registrations.
Q_IMPORT_QML_PLUGIN(NuboModelsPlugin)
Q_IMPORT_QML_PLUGIN(NuboUiPlugin)

namespace nubo::UiEngine {

void configure(QQmlApplicationEngine& engine, std::shared_ptr<const AppIcons> icons)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider(makeSymbolImages()));
    engine.addImageProvider(QStringLiteral("appicon"), new AppIconProvider(icons ? std::move(icons) : makeAppIcons()));
}

QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppState& state, ShellController* shell)
{
    QVariantMap properties{{QStringLiteral("appState"), QVariant::fromValue(&state)}};
    if (shell)
        properties.insert(QStringLiteral("shell"), QVariant::fromValue(shell));
    engine.setInitialProperties(properties);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Nubo/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return nullptr;
    return qobject_cast<QQuickWindow*>(engine.rootObjects().constLast());
}

void attachShell(QQuickWindow& window, ShellController& shell)
{
    QObject::connect(&window, &QWindow::visibleChanged, &shell,
                     [&shell](bool visible) { shell.mainWindowShown(visible); });
    QObject::connect(&shell, &ShellController::mainWindowRequested, &window, [&window] {
        window.show();
        // A platform without stacking (offscreen rendering) has nothing to raise and says so.
        if (QGuiApplication::platformName() != QLatin1String("offscreen"))
            window.raise();
        window.requestActivate();
    });
    if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        QObject::connect(application, &QGuiApplication::applicationStateChanged, &shell,
                         [&shell](Qt::ApplicationState now) {
                             if (now == Qt::ApplicationActive)
                                 shell.applicationActivated();
                         });
    }
    shell.mainWindowShown(window.isVisible());
}

} // namespace nubo::UiEngine
