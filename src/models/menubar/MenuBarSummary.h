#pragma once

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace nubo {

class ActivityModel;
class AppState;

/// What the menu-bar panel shows: the free space, the disk and memory meters, the heaviest
/// running apps with their figures in the current order, and the cleanup row's title. Read off
/// the state and the activity model, either of which may be missing (the panel then shows what
/// it has); every change is announced through `changed`.
class MenuBarSummary : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_DISABLE_COPY_MOVE(MenuBarSummary)
    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY sourcesChanged)
    Q_PROPERTY(ActivityModel* activity READ activity WRITE setActivity NOTIFY sourcesChanged)
    Q_PROPERTY(QString availableLine READ availableLine NOTIFY changed)
    Q_PROPERTY(double diskValue READ diskValue NOTIFY changed)
    Q_PROPERTY(QString diskPercent READ diskPercent NOTIFY changed)
    Q_PROPERTY(bool diskCritical READ diskCritical NOTIFY changed)
    Q_PROPERTY(double memoryValue READ memoryValue NOTIFY changed)
    Q_PROPERTY(QString memoryPercent READ memoryPercent NOTIFY changed)
    Q_PROPERTY(bool memoryCritical READ memoryCritical NOTIFY changed)
    Q_PROPERTY(QVariantList topApps READ topApps NOTIFY changed)
    Q_PROPERTY(QString cleanupTitle READ cleanupTitle NOTIFY changed)
    Q_PROPERTY(QString forceQuitMessage READ forceQuitMessage CONSTANT)

public:
    /// How many of the heaviest apps the panel lists.
    static constexpr int kTopApps = 7;

    explicit MenuBarSummary(QObject* parent = nullptr);

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);
    [[nodiscard]] ActivityModel* activity() const { return m_activity; }
    void setActivity(ActivityModel* activity);

    [[nodiscard]] QString availableLine() const;
    [[nodiscard]] double diskValue() const;
    [[nodiscard]] QString diskPercent() const;
    [[nodiscard]] bool diskCritical() const;
    [[nodiscard]] double memoryValue() const;
    [[nodiscard]] QString memoryPercent() const;
    [[nodiscard]] bool memoryCritical() const;
    /// The first seven of the activity model's order: pid, name, bundleURL, isHidden,
    /// initial, figure.
    [[nodiscard]] QVariantList topApps() const;
    [[nodiscard]] QString cleanupTitle() const;
    [[nodiscard]] QString forceQuitMessage() const;
    Q_INVOKABLE [[nodiscard]] QString forceQuitTitle(const QString& name) const;

signals:
    void sourcesChanged();
    void changed();

private:
    QPointer<AppState> m_state;
    QPointer<ActivityModel> m_activity;
};

} // namespace nubo
