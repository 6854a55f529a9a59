#pragma once

#include "core/apps/AppRemoval.h"
#include "core/apps/InstalledApp.h"
#include "core/cleanup/CleanItem.h"
#include "models/app/Jobs.h"
#include "models/app/ModelServices.h"

#include <QDateTime>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>
#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace nubo {

class AppState;

/// The apps pane's state: the installed applications with their measured sizes, the search and
/// the order over them, the chosen application's leftovers with the ones the user unticked, and
/// the removal of an application with what stays ticked. Lives on the user-interface thread; the
/// catalogue, the measuring and the removal run on the pool.
class AppsModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application state owns the apps model")
    Q_DISABLE_COPY_MOVE(AppsModel)
    /// The visible applications as maps: id, name, version, bundleID, isStore, size, sizeText, lastUsed.
    Q_PROPERTY(QVariantList visible READ visibleMaps NOTIFY visibleChanged)
    Q_PROPERTY(int count READ count NOTIFY appsChanged)
    Q_PROPERTY(int unusedCount READ unusedCount NOTIFY appsChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool sizesLoaded READ sizesLoaded NOTIFY sizesLoadedChanged)
    Q_PROPERTY(Sort sort READ sort WRITE setSort NOTIFY sortChanged)
    Q_PROPERTY(QStringList sortLabels READ sortLabels CONSTANT)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(QString selection READ selection NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedName READ selectedName NOTIFY selectionChanged)
    /// What a removal would delete, the bundle first, as maps: id, name, detail, size, sizeText.
    Q_PROPERTY(QVariantList removalItems READ removalMaps NOTIFY removalChanged)
    /// Every leftover found, with `excluded` telling which ones the user unticked.
    Q_PROPERTY(QVariantList leftovers READ leftoverMaps NOTIFY removalChanged)
    Q_PROPERTY(qint64 removalSize READ removalSize NOTIFY removalChanged)
    Q_PROPERTY(bool leftoversLoading READ leftoversLoading NOTIFY leftoversLoadingChanged)
    Q_PROPERTY(bool isRemoving READ isRemoving NOTIFY isRemovingChanged)
    /// Under the list's title: "Buscando…" or "<n> instaladas" (every application, not only the
    /// ones the search shows, so the figure does not jump while typing).
    Q_PROPERTY(QString headerLine READ headerLine NOTIFY headerLineChanged)
    /// "Ordenar por " and the current order's label.
    Q_PROPERTY(QString sortTitle READ sortTitle NOTIFY sortChanged)
    Q_PROPERTY(int sortIndex READ sortIndex NOTIFY sortChanged)
    /// The chosen application for its detail: name, initial, versionLine, isStore, sizeText;
    /// empty without a selection.
    Q_PROPERTY(QVariantMap selectedApp READ selectedApp NOTIFY selectedAppChanged)
    /// Whether the chosen application runs now, looked at on choosing and every few seconds.
    Q_PROPERTY(bool selectedRunning READ selectedRunning NOTIFY selectedRunningChanged)
    /// The lines of the removal list: the bundle first (locked, always removed), then every
    /// leftover found, ticked unless the user unticked it. Maps: id, label, symbol, detail,
    /// sizeText, ticked, locked.
    Q_PROPERTY(QVariantList removalRows READ removalRows NOTIFY removalChanged)
    Q_PROPERTY(int removalCount READ removalCount NOTIFY removalChanged)
    Q_PROPERTY(QString uninstallLabel READ uninstallLabel NOTIFY removalChanged)
    /// Why the chosen application cannot be removed here; empty when it can.
    Q_PROPERTY(QString removalRefusal READ removalRefusal NOTIFY removalChanged)
    /// What the removal list holds, in the words of the system it runs on.
    Q_PROPERTY(QString removalNote READ removalNote CONSTANT)
    /// What the uninstaller finds, before an application is chosen.
    Q_PROPERTY(QString emptyNote READ emptyNote CONSTANT)

public:
    /// The three orders, in the order the picker shows them: "Nombre", "Tamaño", "Último uso".
    enum class Sort
    {
        Name,
        Size,
        LastUse
    };
    Q_ENUM(Sort)

    /// An application unused for longer than this is recommended for removal.
    static constexpr qint64 unusedAfterSeconds = 7'776'000;

    explicit AppsModel(std::shared_ptr<const ModelServices> services, QObject* parent = nullptr);
    /// Stops measuring and waits for the background work, which borrows the services.
    ~AppsModel() override;

    void setApp(AppState* app) { m_app = app; }

    [[nodiscard]] const QList<InstalledApp>& apps() const { return m_apps; }
    [[nodiscard]] int count() const { return int(m_apps.size()); }
    /// The applications whose name holds `query`, ignoring case and accents the way the user's
    /// language does, in the chosen order. An unknown last use counts as the distant past.
    [[nodiscard]] QList<InstalledApp> visible() const { return arrange(m_apps, m_query, m_sort); }
    /// The filter and order of `visible` over any list in name order.
    [[nodiscard]] static QList<InstalledApp> arrange(const QList<InstalledApp>& apps, const QString& query,
                                                     Sort sort);
    [[nodiscard]] QVariantList visibleMaps() const;
    /// Applications outside "/System" not used in the last 90 days (never, when unknown).
    [[nodiscard]] QList<InstalledApp> unused(const QDateTime& now = QDateTime::currentDateTimeUtc()) const
    {
        return unusedOf(m_apps, now);
    }
    [[nodiscard]] static QList<InstalledApp> unusedOf(const QList<InstalledApp>& apps, const QDateTime& now);
    [[nodiscard]] int unusedCount() const { return int(unused().size()); }
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] bool sizesLoaded() const { return m_sizesLoaded; }
    [[nodiscard]] Sort sort() const { return m_sort; }
    void setSort(Sort sort);
    [[nodiscard]] static QStringList sortLabels();
    [[nodiscard]] const QString& query() const { return m_query; }
    void setQuery(const QString& query);

    [[nodiscard]] const QString& selection() const { return m_selection; }
    [[nodiscard]] std::optional<InstalledApp> selected() const;
    [[nodiscard]] QString selectedName() const;
    [[nodiscard]] const QList<CleanItem>& leftovers() const { return m_leftovers; }
    [[nodiscard]] QVariantList leftoverMaps() const;
    [[nodiscard]] bool leftoversLoading() const { return m_leftoversLoading; }
    [[nodiscard]] const QSet<QString>& excluded() const { return m_excluded; }
    /// How the chosen application is removed; the plan without a tool's word until the leftovers
    /// have landed.
    [[nodiscard]] const AppRemoval& removal() const { return m_removal; }
    /// The application itself first (its bundle, program or packaging command), then every
    /// leftover still ticked; nothing without a selection or when it cannot be removed.
    [[nodiscard]] QList<CleanItem> removalItems() const;
    [[nodiscard]] QVariantList removalMaps() const;
    [[nodiscard]] qint64 removalSize() const;
    [[nodiscard]] bool isRemoving() const { return m_isRemoving; }
    [[nodiscard]] QString headerLine() const;
    [[nodiscard]] QString sortTitle() const;
    [[nodiscard]] int sortIndex() const { return int(m_sort); }
    [[nodiscard]] QVariantMap selectedApp() const;
    [[nodiscard]] bool selectedRunning() const { return m_selectedRunning; }
    [[nodiscard]] QVariantList removalRows() const;
    [[nodiscard]] int removalCount() const { return int(removalItems().size()); }
    [[nodiscard]] QString uninstallLabel() const;
    [[nodiscard]] QString removalRefusal() const;
    [[nodiscard]] QString removalNote() const;
    [[nodiscard]] QString emptyNote() const;

    /// Lists the applications, then measures their bundles in the background.
    Q_INVOKABLE void load();
    /// The screen was entered: loads the list unless it has been loaded or is loading already.
    Q_INVOKABLE void enter();
    /// Chooses the order by its place in `sortLabels`; any other number is ignored.
    Q_INVOKABLE void chooseSort(int index);
    /// Looks again whether the chosen application runs.
    Q_INVOKABLE void refreshRunning();
    /// Empties the list (before a fresh analysis reloads it).
    void clear();
    /// Chooses an application by its bundle path and looks for its leftovers.
    Q_INVOKABLE void select(const QString& url);
    /// Unticks a leftover, or ticks it again.
    Q_INVOKABLE void toggle(const QString& itemId);
    /// Removes the selected application and its ticked leftovers: a running copy is asked to quit
    /// first and given about three seconds. A packaging command runs before anything is deleted,
    /// and when it fails the leftovers stay with the application. The application leaves the list
    /// only when its bundle or desktop entry is really gone.
    Q_INVOKABLE void uninstall();

signals:
    void appsChanged();
    void visibleChanged();
    void isLoadingChanged();
    void sizesLoadedChanged();
    void sortChanged();
    void queryChanged();
    void selectionChanged();
    void removalChanged();
    void leftoversLoadingChanged();
    void isRemovingChanged();
    void headerLineChanged();
    void selectedAppChanged();
    void selectedRunningChanged();

private:
    void setLoading(bool loading);
    void setSizesLoaded(bool loaded);
    void setLeftoversLoading(bool loading);
    void setRemoving(bool removing);
    /// Each application's identity with the path its size is measured on.
    using Payloads = QList<std::pair<QString, QString>>;
    void measure(Payloads payloads);
    void storeSizes(const QHash<QString, qint64>& sizes);
    void finishUninstall(const InstalledApp& app, qint64 freed, qint64 failures, bool bundleGone);

    std::shared_ptr<const ModelServices> m_services;
    AppState* m_app = nullptr;
    QList<InstalledApp> m_apps;
    bool m_isLoading = false;
    bool m_sizesLoaded = false;
    Sort m_sort = Sort::Name;
    QString m_query;
    QString m_selection;
    QList<CleanItem> m_leftovers;
    AppRemoval m_removal;
    bool m_leftoversLoading = false;
    QSet<QString> m_excluded;
    bool m_isRemoving = false;
    bool m_selectedRunning = false;
    bool m_everLoaded = false;
    QTimer m_runningPoll;
    // Last, so that it goes first: nothing lands on a model that is being taken apart.
    Jobs m_jobs{this};
};

} // namespace nubo
