#include "models/app/ShellController.h"

#include "models/app/AppState.h"
#include "models/app/Notify.h"
#include "platform/AppShell.h"

namespace nubo {

ShellController::ShellController(AppState& state, AppShell& shell, QObject* parent)
    : QObject(parent), m_state(state), m_shell(shell)
{
    connect(state.map(), &MapModel::currentChanged, this, &ShellController::canGoUpChanged);
}

void ShellController::start()
{
    m_shell.setReopenHandler([this] {
        // Reopening shows the window as it was left, on whatever pane the user chose.
        m_shell.setPresence(AppShell::Presence::Regular);
        emit mainWindowRequested();
    });
    m_shell.startUpdater();
}

bool ShellController::canCheckForUpdates() const
{
    return m_shell.canCheckForUpdates();
}

bool ShellController::canGoUp() const
{
    return m_state.map()->canGoUp();
}

void ShellController::setHasTray(bool hasTray)
{
    assignAndNotify(this, m_hasTray, hasTray, &ShellController::hasTrayChanged);
}

void ShellController::setNativeMenus(bool native)
{
    assignAndNotify(this, m_nativeMenus, native, &ShellController::nativeMenusChanged);
}

void ShellController::rescan()
{
    // The pane stays as it is: a shortcut does not pull the user away from what they read; the
    // map shows the scan running whenever they go there.
    m_state.map()->rescan();
}

void ShellController::goUp()
{
    m_state.map()->goUp();
}

void ShellController::checkForUpdates()
{
    if (m_shell.canCheckForUpdates())
        m_shell.checkForUpdates();
}

void ShellController::openMainWindow()
{
    m_state.setPane(Pane::Home);
    m_shell.setPresence(AppShell::Presence::Regular);
    emit mainWindowRequested();
}

void ShellController::showPanel()
{
    emit panelRequested();
}

void ShellController::quit()
{
    emit quitRequested();
}

void ShellController::mainWindowShown(bool shown)
{
    m_shell.setPresence(shown ? AppShell::Presence::Regular : AppShell::Presence::Accessory);
}

void ShellController::applicationActivated()
{
    m_state.refreshDisk();
}

} // namespace nubo
