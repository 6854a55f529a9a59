#include "core/files/Home.h"
#include "core/privacy/Permissions.h"
#include "core/privacy/Privacy.h"
#include "models/app/AppState.h"
#include "models/app/Jobs.h"
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

#include <chrono>
#include <cstdlib>

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

    // The services outlive the window and the state, which borrows them; background work that
    // outlives the state shares what it uses.
    const QString home = nubo::Home::url();
    nubo::Privacy privacy(home, [home] { return nubo::Permissions::hasFullDiskAccess(home); });
    const std::unique_ptr<nubo::VolumeCapacity> volume = nubo::makeVolumeCapacity();
    int code = 0;
    {
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
        nubo::MenuBarPresenter panel(engine, state, controller, *symbols,
                                     QSystemTrayIcon::isSystemTrayAvailable());
        QApplication::setQuitOnLastWindowClosed(!controller.keepsRunningWithoutWindow(platformReopens));
        QObject::connect(&controller, &nubo::ShellController::quitRequested, &app, &QCoreApplication::quit,
                         Qt::QueuedConnection);
        code = QApplication::exec();
    } // The window goes, then the state: every model asks its work to stop and returns at once.

    // Work that was asked to stop ends within moments (a tool is killed, a scan gives up); what
    // cannot stop, such as a password prompt, must not find the services gone under it, so the
    // program then ends without taking anything apart. The window is already gone: the user
    // waits for nothing, and no windowless process stays for more than a moment.
    if (!nubo::Jobs::waitForAll(std::chrono::milliseconds(800)))
        std::_Exit(code);
    return code;
}
