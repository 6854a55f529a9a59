#include "app/shell/NativeMenus.h"

#include "models/app/ShellController.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace nubo {

NativeMenus::NativeMenus(ShellController& shell) : m_bar(std::make_unique<QMenuBar>())
{
    QMenu* file = m_bar->addMenu(QStringLiteral("Archivo"));
    QAction* rescan = file->addAction(QStringLiteral("Escanear de nuevo"));
    // Qt's Control is the Command key on a Mac.
    rescan->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    // Left where they are: the menu bar would otherwise guess from their titles where they belong.
    rescan->setMenuRole(QAction::NoRole);
    QObject::connect(rescan, &QAction::triggered, &shell, &ShellController::rescan);
    QAction* up = file->addAction(QStringLiteral("Subir un nivel"));
    up->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Up));
    up->setMenuRole(QAction::NoRole);
    up->setEnabled(shell.canGoUp());
    QObject::connect(up, &QAction::triggered, &shell, &ShellController::goUp);
    QObject::connect(&shell, &ShellController::canGoUpChanged, up,
                     [up, &shell] { up->setEnabled(shell.canGoUp()); });

    if (shell.canCheckForUpdates()) {
        // An application-specific item lands in the application menu, just after "About".
        QAction* updates = file->addAction(QStringLiteral("Buscar actualizaciones…"));
        updates->setMenuRole(QAction::ApplicationSpecificRole);
        QObject::connect(updates, &QAction::triggered, &shell, &ShellController::checkForUpdates);
    }
    shell.setNativeMenus(true);
}

NativeMenus::~NativeMenus() = default;

} // namespace nubo
