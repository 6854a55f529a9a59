#include "app/menubar/MenuBarPresenter.h"

#include "models/app/AppState.h"
#include "models/app/ShellController.h"
#include "models/menubar/PanelPlacement.h"
#include "platform/SymbolImages.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QScreen>
#include <QSystemTrayIcon>

namespace nubo {

MenuBarPresenter::MenuBarPresenter(QQmlEngine& engine, AppState& state, ShellController& controller,
                                   const SymbolImages& symbols, bool useTray, QObject* parent)
    : QObject(parent)
{
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Nubo/MenuBarWindow.qml")));
    m_window.reset(component.createWithInitialProperties(
        {{QStringLiteral("appState"), QVariant::fromValue(&state)},
         {QStringLiteral("shell"), QVariant::fromValue(&controller)}}));
    m_panel = qobject_cast<QQuickWindow*>(m_window.get());
    if (!m_panel)
        qWarning("Nubo: the menu-bar panel did not load: %s", qPrintable(component.errorString()));
    else
        connect(m_panel, &QWindow::visibleChanged, this, [this](bool visible) {
            if (!visible)
                m_sinceHidden.start();
        });

    if (useTray) {
        // A Linux panel shows the application's own picture, as it does for every other program;
        // a Mac's menu bar draws a mask in its own colours, light or dark, as it does for the
        // system's icons (an application there has no window icon of its own).
        QIcon icon = QGuiApplication::windowIcon();
        if (icon.isNull()) {
            for (const int side : {16, 22, 32, 44})
                icon.addPixmap(QPixmap::fromImage(symbols.render(QStringLiteral("wind"), QSize(side, side))));
            icon.setIsMask(true);
        }
        m_tray = std::make_unique<QSystemTrayIcon>(icon);
        m_tray->setToolTip(QStringLiteral("Nubo"));
        connect(m_tray.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                toggle();
        });
        m_tray->show();
    }
    controller.setHasTray(m_tray != nullptr);
    connect(&controller, &ShellController::panelRequested, this, &MenuBarPresenter::show);
}

MenuBarPresenter::~MenuBarPresenter() = default;

void MenuBarPresenter::toggle()
{
    constexpr qint64 kSameClickMs = 300;
    if (m_panel && m_panel->isVisible())
        m_panel->hide();
    else if (!m_sinceHidden.isValid() || m_sinceHidden.elapsed() > kSameClickMs)
        show();
}

void MenuBarPresenter::show()
{
    if (!m_panel)
        return;
    const QRect icon = m_tray ? m_tray->geometry() : QRect();
    QScreen* screen = QGuiApplication::screenAt(icon.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1280, 800);
    m_panel->setPosition(PanelPlacement::position(icon, m_panel->size(), area));
    m_panel->show();
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        m_panel->raise();
    m_panel->requestActivate();
}

} // namespace nubo
