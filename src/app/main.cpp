#include "core/files/Home.h"
#include "core/privacy/Permissions.h"
#include "core/privacy/Privacy.h"
#include "models/app/AppState.h"
#include "platform/VolumeCapacity.h"
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

    // The services live as long as the window; the state borrows them.
    const QString home = nubo::Home::url();
    nubo::Privacy privacy(home, [home] { return nubo::Permissions::hasFullDiskAccess(home); });
    const std::unique_ptr<nubo::VolumeCapacity> volume = nubo::makeVolumeCapacity();
    nubo::AppState state({privacy, *volume});
    QQmlApplicationEngine engine;
    nubo::UiEngine::configure(engine);
    if (!nubo::UiEngine::loadMainWindow(engine, state))
        return 1;
    return QGuiApplication::exec();
}
