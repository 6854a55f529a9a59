#pragma once

#include "models/home/Recommendations.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace nubo {

class AppState;

/// What the home screen shows, read off the application state and its models: the header's
/// texts, the safe clean and the recommendations. Keeps nothing of its own; every change of what
/// it reads is announced through `changed`, so the screen redraws.
class HomeSummary : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_DISABLE_COPY_MOVE(HomeSummary)
    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(bool hasScanned READ hasScanned NOTIFY changed)
    Q_PROPERTY(bool isAnalyzing READ isAnalyzing NOTIFY changed)
    Q_PROPERTY(bool canAnalyzeAgain READ canAnalyzeAgain NOTIFY changed)
    Q_PROPERTY(QString introduction READ introduction CONSTANT)
    Q_PROPERTY(QString headline READ headline NOTIFY changed)
    Q_PROPERTY(QString diskLine READ diskLine NOTIFY changed)
    Q_PROPERTY(QString zonesLine READ zonesLine NOTIFY changed)
    Q_PROPERTY(QString safeShare READ safeShare NOTIFY changed)
    Q_PROPERTY(double diskFraction READ diskFraction NOTIFY changed)
    Q_PROPERTY(int diskPercent READ diskPercent NOTIFY changed)
    Q_PROPERTY(QString diskPercentText READ diskPercentText NOTIFY changed)
    Q_PROPERTY(QString diskTone READ diskTone NOTIFY changed)
    Q_PROPERTY(QString safeExplanation READ safeExplanation CONSTANT)
    Q_PROPERTY(QString safeButton READ safeButton NOTIFY changed)
    Q_PROPERTY(bool canCleanSafe READ canCleanSafe NOTIFY changed)
    Q_PROPERTY(QVariantList recommendations READ recommendationMaps NOTIFY changed)
    Q_PROPERTY(QString nothingToReview READ nothingToReview NOTIFY appStateChanged)
    Q_PROPERTY(QString footer READ footer NOTIFY appStateChanged)

public:
    explicit HomeSummary(QObject* parent = nullptr);

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);

    [[nodiscard]] bool hasScanned() const;
    [[nodiscard]] bool isAnalyzing() const;
    /// Only after a first analysis, and never while one runs.
    [[nodiscard]] bool canAnalyzeAgain() const;
    [[nodiscard]] QString introduction() const;
    [[nodiscard]] QString headline() const;
    [[nodiscard]] QString diskLine() const;
    [[nodiscard]] QString zonesLine() const;
    [[nodiscard]] QString safeShare() const;
    [[nodiscard]] double diskFraction() const;
    [[nodiscard]] int diskPercent() const;
    /// "82 %", the ring's centre.
    [[nodiscard]] QString diskPercentText() const;
    [[nodiscard]] QString diskTone() const;
    [[nodiscard]] QString safeExplanation() const;
    [[nodiscard]] QString safeButton() const;
    /// Everything the safe categories hold, for the header's safe share.
    [[nodiscard]] qint64 safeSize() const;
    /// What the safe clean deletes, and so what its button shows: the safe categories' items the
    /// user has left selected (all of them unless some were unticked on the cleanup pane).
    [[nodiscard]] qint64 safeSelectedSize() const;
    /// The selected items of the safe categories: what the safe clean would delete.
    [[nodiscard]] int safeCount() const;
    /// Something safe is selected and no clean is running.
    [[nodiscard]] bool canCleanSafe() const;
    [[nodiscard]] QList<Recommendation> recommendations() const;
    [[nodiscard]] QVariantList recommendationMaps() const;
    [[nodiscard]] QString nothingToReview() const;
    [[nodiscard]] QString footer() const;

    Q_INVOKABLE void analyze();
    /// Cleans the selected items of the safe categories at once: the button names the size it
    /// frees, and these categories hold only what the system rebuilds by itself.
    Q_INVOKABLE void cleanSafe();
    /// Runs the button of the recommendation with this id; an unknown id does nothing.
    Q_INVOKABLE void perform(const QString& recommendationId);

signals:
    void appStateChanged();
    void changed();

private:
    [[nodiscard]] Recommendations::Inputs inputs() const;

    QPointer<AppState> m_state;
};

} // namespace nubo
