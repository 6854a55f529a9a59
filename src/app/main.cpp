#include "core/files/Home.h"
#include "core/privacy/Permissions.h"
#include "core/privacy/Privacy.h"
#include "models/app/AppState.h"
#include "models/app/ShellController.h"
#include "platform/AppShell.h"
#include "platform/SymbolImages.h"
#include "platform/VolumeCapacity.h"
#include "app/menubar/MenuBarPresenter.h"
#include "app/shell/NativeMenus.h"
#include "app/ui/UiEngine.h"

#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSystemTrayIcon>

int main(int argc, char* argv[])
{
    // A widgets application: the tray icon and the platform's own menu bar are widgets classes.
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Nubo"));
    QApplication::setOrganizationDomain(QStringLiteral("nubo.app"));
#ifndef Q_OS_MACOS
    // Fusion follows the system palette, light or dark, and looks at home on Linux desktops.
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
#endif

    // The services live as long as the window; the state borrows them.
    const QString home = nubo::Home::url();
    nubo::Privacy privacy(home, [home] { return nubo::Permissions::hasFullDiskAccess(home); });
    const std::unique_ptr<nubo::VolumeCapacity> volume = nubo::makeVolumeCapacity();
    nubo::AppState state({privacy, *volume});

    // Then the update service, then the window and the menu-bar panel.
    const std::unique_ptr<nubo::AppShell> shell = nubo::makeAppShell();
    nubo::ShellController controller(state, *shell);
    controller.start();
#ifdef Q_OS_MACOS
    const nubo::NativeMenus menus(controller);
    constexpr bool platformReopens = true;
#else
    constexpr bool platformReopens = false;
#endif

    QQmlApplicationEngine engine;
    nubo::UiEngine::configure(engine);
    QQuickWindow* window = nubo::UiEngine::loadMainWindow(engine, state, &controller);
    if (!window)
        return 1;
    nubo::UiEngine::attachShell(*window, controller);
    const std::unique_ptr<nubo::SymbolImages> symbols = nubo::makeSymbolImages();
    nubo::MenuBarPresenter panel(engine, state, controller, *symbols, QSystemTrayIcon::isSystemTrayAvailable());
    QApplication::setQuitOnLastWindowClosed(!controller.keepsRunningWithoutWindow(platformReopens));
    QObject::connect(&controller, &nubo::ShellController::quitRequested, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    return QApplication::exec();
}
