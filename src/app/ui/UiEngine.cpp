#include "app/ui/UiEngine.h"

#include "models/app/AppState.h"
#include "app/icons/SymbolImageProvider.h"
#include "platform/SymbolImages.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

// Both QML modules are static libraries: importing their plugins keeps the linker from dropping
// their type registrations.
Q_IMPORT_QML_PLUGIN(NuboModelsPlugin)
Q_IMPORT_QML_PLUGIN(NuboUiPlugin)

namespace nubo::UiEngine {

void configure(QQmlApplicationEngine& engine)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider(makeSymbolImages()));
}

QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppState& state)
{
    engine.setInitialProperties({{QStringLiteral("appState"), QVariant::fromValue(&state)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Nubo/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return nullptr;
    return qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
}

} // namespace nubo::UiEngine
