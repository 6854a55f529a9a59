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
#include "app/shell/SignalQuit.h"
#include "app/ui/UiEngine.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSystemTrayIcon>

#include <chrono>
#include <cstdlib>
#include <cstring>

namespace {

void nameTheProgram()
{
    QCoreApplication::setApplicationName(QStringLiteral("Nubo"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NUBO_VERSION));
    QCoreApplication::setOrganizationDomain(QStringLiteral("nubo.app"));
}

// "--help" and "--version" print and end the program, and an unknown option is refused with one
// line and a failure, all before any window; Qt's own options (-platform, -style…) are taken by
// the application object first.
void readCommandLine(const QCoreApplication& app)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Muestra qué llena el disco y libera espacio con seguridad."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(app);
}

// Whether the command line only asks for help or the version, which need no display.
bool onlyAsks(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        for (const char* option : {"-h", "--help", "--help-all", "-v", "--version"}) {
            if (std::strcmp(argv[i], option) == 0)
                return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char* argv[])
{
    nubo::SignalQuit::catchSignals();
    nameTheProgram();
    if (onlyAsks(argc, argv)) {
        const QCoreApplication plain(argc, argv);
        readCommandLine(plain); // prints and ends the program
    }
    // A widgets application: the tray icon and the platform's own menu bar are widgets classes.
    QApplication app(argc, argv);
    readCommandLine(app);
    const nubo::SignalQuit quitOnSignal;
    // One identity with the installed desktop entry: the desktop groups the windows under it and
    // shows its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral(NUBO_IDENTIFIER));
#ifndef Q_OS_MACOS
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral(NUBO_IDENTIFIER),
                                                 QIcon(QStringLiteral(":/icons/" NUBO_IDENTIFIER ".png"))));
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
