#include "models/menubar/MenuBarSummary.h"
#include "models/apps/AppsTexts.h"

#include "models/activity/ActivityModel.h"
#include "models/app/AppState.h"
#include "models/menubar/MenuBarTexts.h"

namespace nubo {

MenuBarSummary::MenuBarSummary(QObject* parent) : QObject(parent) {}

void MenuBarSummary::setAppState(AppState* state)
{
    if (state == m_state)
        return;
    if (m_state)
        m_state->disconnect(this);
    m_state = state;
    if (state) {
        const auto announce = [this] { emit changed(); };
        connect(state, &AppState::diskChanged, this, announce);
        connect(state, &AppState::safeSizeChanged, this, announce);
        connect(state->clean(), &CleanModel::hasScannedChanged, this, announce);
    }
    emit sourcesChanged();
    emit changed();
}

void MenuBarSummary::setActivity(ActivityModel* activity)
{
    if (activity == m_activity)
        return;
    if (m_activity)
        m_activity->disconnect(this);
    m_activity = activity;
    if (activity) {
        const auto announce = [this] { emit changed(); };
        connect(activity, &ActivityModel::memoryChanged, this, announce);
        connect(activity, &ActivityModel::sortedChanged, this, announce);
        connect(activity, &ActivityModel::sortChanged, this, announce);
    }
    emit sourcesChanged();
    emit changed();
}

QString MenuBarSummary::availableLine() const
{
    return MenuBarTexts::available(m_state ? m_state->diskAvailable() : 0);
}

double MenuBarSummary::diskValue() const
{
    return m_state ? m_state->diskFraction() : 0;
}

QString MenuBarSummary::diskPercent() const
{
    return MenuBarTexts::percent(diskValue());
}

bool MenuBarSummary::diskCritical() const
{
    return MenuBarTexts::isCritical(diskValue());
}

double MenuBarSummary::memoryValue() const
{
    return m_activity ? MenuBarTexts::memoryShare(m_activity->memoryUsed(), m_activity->memoryTotal()) : 0;
}

QString MenuBarSummary::memoryPercent() const
{
    return MenuBarTexts::percent(memoryValue());
}

bool MenuBarSummary::memoryCritical() const
{
    return MenuBarTexts::isCritical(memoryValue());
}

QVariantList MenuBarSummary::topApps() const
{
    QVariantList rows;
    if (!m_activity)
        return rows;
    const bool byMemory = m_activity->sort() == ActivityModel::Sort::memory;
    const QList<AppUsage> sorted = m_activity->sorted();
    for (const AppUsage& app : sorted.mid(0, kTopApps)) {
        QVariantMap row = AppsTexts::badge(app.name, app.bundleURL);
        row.insert({{QStringLiteral("pid"), app.pid},
                    {QStringLiteral("name"), app.name},
                    {QStringLiteral("bundleURL"), app.bundleURL},
                    {QStringLiteral("isHidden"), app.isHidden},
                    {QStringLiteral("figure"), MenuBarTexts::figure(byMemory, app.cpu, app.memory)}});
        rows.append(row);
    }
    return rows;
}

QString MenuBarSummary::cleanupTitle() const
{
    if (!m_state)
        return MenuBarTexts::cleanupTitle(false, 0);
    return MenuBarTexts::cleanupTitle(m_state->clean()->hasScanned(), m_state->safeSize());
}

QString MenuBarSummary::forceQuitMessage() const
{
    return MenuBarTexts::forceQuitMessage();
}

QString MenuBarSummary::forceQuitTitle(const QString& name) const
{
    return MenuBarTexts::forceQuitTitle(name);
}

} // namespace nubo
