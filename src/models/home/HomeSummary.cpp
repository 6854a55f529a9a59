#include "models/home/HomeSummary.h"

#include "core/format/CheckedMath.h"
#include "models/app/AppState.h"
#include "models/home/HomeTexts.h"
#include "models/text/ResultTexts.h"

namespace nubo {

HomeSummary::HomeSummary(QObject* parent) : QObject(parent) {}

void HomeSummary::setAppState(AppState* state)
{
    if (state == m_state)
        return;
    if (m_state)
        m_state->disconnect(this);
    m_state = state;
    if (state) {
        const auto announce = [this] { emit changed(); };
        connect(state, &AppState::diskChanged, this, announce);
        connect(state, &AppState::isAnalyzingChanged, this, announce);
        connect(state, &AppState::safeSizeChanged, this, announce);
        CleanModel* clean = state->clean();
        connect(clean, &CleanModel::categoriesChanged, this, announce);
        connect(clean, &CleanModel::selectionChanged, this, announce);
        connect(clean, &CleanModel::hasScannedChanged, this, announce);
        connect(clean, &CleanModel::isCleaningChanged, this, announce);
        connect(state->apps(), &AppsModel::appsChanged, this, announce);
        connect(state->apps(), &AppsModel::sizesLoadedChanged, this, announce);
        connect(state->map(), &MapModel::currentChanged, this, announce);
    }
    emit appStateChanged();
    emit changed();
}

bool HomeSummary::hasScanned() const
{
    return m_state && m_state->clean()->hasScanned();
}

bool HomeSummary::isAnalyzing() const
{
    return m_state && m_state->isAnalyzing();
}

bool HomeSummary::canAnalyzeAgain() const
{
    return hasScanned() && !isAnalyzing();
}

QString HomeSummary::introduction() const
{
    return HomeTexts::introduction();
}

QString HomeSummary::headline() const
{
    if (!hasScanned())
        return {};
    return HomeTexts::headline(isAnalyzing(), m_state->clean()->totalFound());
}

QString HomeSummary::diskLine() const
{
    return m_state ? HomeTexts::diskLine(m_state->diskAvailable(), m_state->diskTotal()) : QString();
}

QString HomeSummary::zonesLine() const
{
    if (!m_state)
        return {};
    qint64 examined = 0;
    for (const QVariant& row : m_state->clean()->categories()) {
        if (m_state->clean()->hasEntry(row.toMap().value(QStringLiteral("id")).toString()))
            ++examined;
    }
    return HomeTexts::zonesLine(examined);
}

QString HomeSummary::safeShare() const
{
    return HomeTexts::safeShare(safeSize());
}

double HomeSummary::diskFraction() const
{
    return m_state ? m_state->diskFraction() : 0;
}

int HomeSummary::diskPercent() const
{
    return ResultTexts::percent(diskFraction());
}

QString HomeSummary::diskPercentText() const
{
    return QString::number(diskPercent()) + QStringLiteral(" %");
}

QString HomeSummary::diskTone() const
{
    return m_state ? m_state->diskTone() : QStringLiteral("accent");
}

QString HomeSummary::safeExplanation() const
{
    return HomeTexts::safeExplanation();
}

QString HomeSummary::safeButton() const
{
    return HomeTexts::safeButton(hasScanned() ? safeSelectedSize() : 0);
}

qint64 HomeSummary::safeSelectedSize() const
{
    qint64 total = 0;
    if (m_state) {
        for (const QString& id : m_state->safeCategories())
            total = checkedAdd(total, m_state->clean()->selectedSize(id));
    }
    return total;
}

qint64 HomeSummary::safeSize() const
{
    return m_state ? m_state->safeSize() : 0;
}

int HomeSummary::safeCount() const
{
    if (!m_state)
        return 0;
    int count = 0;
    for (const QString& id : m_state->safeCategories()) {
        for (const CleanItem& item : m_state->clean()->items(id))
            count += m_state->clean()->isSelected(item.id) ? 1 : 0;
    }
    return count;
}

bool HomeSummary::canCleanSafe() const
{
    return m_state && !m_state->clean()->isCleaning() && safeCount() > 0;
}

Recommendations::Inputs HomeSummary::inputs() const
{
    Recommendations::Inputs in;
    in.diskFraction = m_state->diskFraction();
    // The safe categories are cleaned in one go by the row above the list; the list points at
    // what deserves a look before deleting.
    const QStringList safe = m_state->safeCategories();
    for (const QVariant& value : m_state->clean()->categories()) {
        const QVariantMap row = value.toMap();
        const QString id = row.value(QStringLiteral("id")).toString();
        if (safe.contains(id))
            continue;
        in.categories.append({id, row.value(QStringLiteral("symbol")).toString(),
                              row.value(QStringLiteral("title")).toString(),
                              row.value(QStringLiteral("color")).toString(),
                              row.value(QStringLiteral("count")).toLongLong(), m_state->clean()->size(id)});
    }
    for (const InstalledApp& app : m_state->apps()->unused()) {
        in.unusedApps.append(app.name);
        in.unusedSize = checkedAdd(in.unusedSize, app.size.value_or(0));
    }
    in.unusedSizesLoaded = m_state->apps()->sizesLoaded();
    in.mapScanned = m_state->map()->hasTree();
    return in;
}

QList<Recommendation> HomeSummary::recommendations() const
{
    if (!m_state)
        return {};
    return Recommendations::build(inputs());
}

QVariantList HomeSummary::recommendationMaps() const
{
    QVariantList maps;
    for (const Recommendation& row : recommendations())
        maps.append(row.toMap());
    return maps;
}

QString HomeSummary::nothingToReview() const
{
    return HomeTexts::nothingToReview(m_state ? m_state->system() : HostSystem::Mac);
}

QString HomeSummary::footer() const
{
    return HomeTexts::footer(m_state ? m_state->system() : HostSystem::Mac);
}

void HomeSummary::analyze()
{
    if (m_state && !m_state->isAnalyzing())
        m_state->analyze();
}

void HomeSummary::cleanSafe()
{
    if (canCleanSafe())
        m_state->clean()->clean(m_state->safeCategories());
}

void HomeSummary::perform(const QString& recommendationId)
{
    for (const Recommendation& row : recommendations()) {
        if (row.id != recommendationId)
            continue;
        switch (row.perform) {
        case Recommendation::Action::OpenMap:
            m_state->setPane(Pane::Map);
            break;
        case Recommendation::Action::RevealCategory:
            m_state->reveal(row.categoryId);
            break;
        case Recommendation::Action::ShowUnusedApps:
            m_state->showUnusedApps();
            break;
        }
        return;
    }
}

} // namespace nubo
