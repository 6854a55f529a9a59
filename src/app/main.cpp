#include "models/app/AppState.h"
#include "app/ui/UiEngine.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Nubo"));
    QGuiApplication::setOrganizationDomain(QStringLiteral("nubo.app"));
#ifndef Q_OS_MACOS
    // Fusion follows the system palette, light or dark, and looks at home on Linux desktops.
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
#endif

    nubo::AppState state;
    QQmlApplicationEngine engine;
    nubo::UiEngine::configure(engine);
    if (!nubo::UiEngine::loadMainWindow(engine, state))
        return 1;
    return QGuiApplication::exec();
}
