#pragma once

#include "core/cleanup/CleanCategory.h"
#include "models/app/Jobs.h"
#include "models/app/ModelServices.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>
#include <optional>

namespace nubo {

class AppState;

/// The cleanup pane's state: the items every category's rule found, the user's selection, and the
/// clean of that selection, with path items going through the deleter and command items through
/// the command runner. Each category scans on its own background task and lands on its own; only
/// the latest scan of a category may land. Lives on the user-interface thread.
class CleanModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application state owns the cleanup model")
    Q_DISABLE_COPY_MOVE(CleanModel)
    /// One map per catalogue row: id, group, title, subtitle, symbol, color, caution, loading,
    /// count, size, sizeText, selectedSize, state ("none", "all", "partial").
    Q_PROPERTY(QVariantList categories READ categories NOTIFY categoriesChanged)
    Q_PROPERTY(QStringList selected READ selectedIds NOTIFY selectionChanged)
    Q_PROPERTY(QStringList expanded READ expanded NOTIFY expandedChanged)
    Q_PROPERTY(QStringList path READ path WRITE setPath NOTIFY pathChanged)
    Q_PROPERTY(bool hasScanned READ hasScanned NOTIFY hasScannedChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(bool isCleaning READ isCleaning NOTIFY isCleaningChanged)
    /// The clean button's words: "Limpiando…" while a clean runs.
    Q_PROPERTY(QString cleanLabel READ cleanLabel NOTIFY isCleaningChanged)
    Q_PROPERTY(bool isCancelling READ isCancelling NOTIFY isCleaningChanged)
    Q_PROPERTY(qint64 totalSelected READ totalSelected NOTIFY categoriesChanged)
    Q_PROPERTY(qint64 totalFound READ totalFound NOTIFY categoriesChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    /// The number of categories in the catalogue.
    Q_PROPERTY(int categoryCount READ categoryCount CONSTANT)
    /// The catalogue's categories under their headings, in catalogue order: maps with `title` and
    /// `categories` (the rows of `categories`).
    Q_PROPERTY(QVariantList groups READ groups NOTIFY categoriesChanged)
    /// The category the detail page shows (the first entry of `path`): its row of `categories`
    /// plus countLine, selectedSizeText, toggleLabel, itemCountText, countText and its `items`;
    /// empty when the overview shows or the id is unknown.
    Q_PROPERTY(QVariantMap detail READ detail NOTIFY detailChanged)
    /// The screen's texts for the current figures.
    Q_PROPERTY(QString overviewLine READ overviewLine NOTIFY textsChanged)
    Q_PROPERTY(QString summaryHeading READ summaryHeading NOTIFY textsChanged)
    Q_PROPERTY(QString progressLine READ progressLine NOTIFY textsChanged)
    Q_PROPERTY(QString selectionLine READ selectionLine NOTIFY textsChanged)
    Q_PROPERTY(QString totalSelectedText READ totalSelectedText NOTIFY textsChanged)
    /// The share of the catalogue's categories whose scan has finished, 0 to 1.
    Q_PROPERTY(double scanProgress READ scanProgress NOTIFY textsChanged)

public:
    enum class CategoryState
    {
        None,
        All,
        Partial
    };

    explicit CleanModel(std::shared_ptr<const ModelServices> services, QObject* parent = nullptr);
    /// Waits for the background work, which borrows the services.
    ~CleanModel() override;

    void setApp(AppState* app) { m_app = app; }

    /// The category's items in the order its rule gave them; empty before it was scanned.
    [[nodiscard]] QList<CleanItem> items(const QString& categoryId) const;
    [[nodiscard]] bool hasEntry(const QString& categoryId) const { return m_items.contains(categoryId); }
    [[nodiscard]] qint64 size(const QString& categoryId) const;
    [[nodiscard]] qint64 selectedSize(const QString& categoryId) const;
    [[nodiscard]] CategoryState state(const QString& categoryId) const;
    [[nodiscard]] bool isSelected(const QString& itemId) const { return m_selected.contains(itemId); }
    [[nodiscard]] const QSet<QString>& selection() const { return m_selected; }
    [[nodiscard]] QStringList selectedIds() const;
    [[nodiscard]] QStringList loading() const;
    [[nodiscard]] qint64 totalSelected() const;
    [[nodiscard]] qint64 totalFound() const;
    [[nodiscard]] int selectedCount() const;

    [[nodiscard]] int categoryCount() const;
    [[nodiscard]] QVariantList categories() const;
    [[nodiscard]] QVariantList groups() const;
    [[nodiscard]] QVariantMap detail() const;
    [[nodiscard]] QString overviewLine() const;
    [[nodiscard]] QString summaryHeading() const;
    [[nodiscard]] QString progressLine() const;
    [[nodiscard]] QString selectionLine() const;
    [[nodiscard]] QString totalSelectedText() const;
    [[nodiscard]] double scanProgress() const;
    [[nodiscard]] QStringList expanded() const;
    [[nodiscard]] const QStringList& path() const { return m_path; }
    void setPath(const QStringList& path);
    [[nodiscard]] bool hasScanned() const { return m_hasScanned; }
    [[nodiscard]] bool isScanning() const { return !m_loading.isEmpty(); }
    [[nodiscard]] bool isCleaning() const { return m_isCleaning; }
    [[nodiscard]] QString cleanLabel() const;
    [[nodiscard]] bool isCancelling() const { return m_jobs.isInterrupted(QStringLiteral("clean")); }

    /// Runs every category's rule; each list replaces the old one as it arrives, and the items of
    /// categories that start selected are selected.
    Q_INVOKABLE void scan();
    /// The screen was entered: the first visit starts the one scan, later visits keep the results.
    Q_INVOKABLE void enter();
    /// Opens the detail page of a category, or the overview again for an empty id.
    Q_INVOKABLE void open(const QString& categoryId);
    /// The folder holding an item, as an address the file browser opens; empty for a command
    /// item, an unknown id, or a folder whose name only the disk's own bytes can reach.
    Q_INVOKABLE [[nodiscard]] QUrl revealUrl(const QString& itemId) const;
    /// Shows the item in the file manager, when it has a button for that (`revealUrl` not empty).
    Q_INVOKABLE void revealItem(const QString& itemId) const;
    /// All selected → none; none or some → all.
    Q_INVOKABLE void toggleCategory(const QString& categoryId);
    Q_INVOKABLE void toggleItem(const QString& itemId);
    Q_INVOKABLE void toggleExpanded(const QString& categoryId);
    /// Cleans the selected items of every category.
    Q_INVOKABLE void clean();
    /// Cleans the selected items of these categories only; the others keep their selection.
    /// Nothing selected, or a clean already running: nothing happens.
    Q_INVOKABLE void clean(const QStringList& categoryIds);
    /// Stops a running clean before its next item; what it did until then is reported, and
    /// what it never reached stays listed and selected.
    Q_INVOKABLE void cancelClean();

signals:
    void categoriesChanged();
    void selectionChanged();
    void expandedChanged();
    void pathChanged();
    void hasScannedChanged();
    void isScanningChanged();
    void isCleaningChanged();
    void detailChanged();
    void textsChanged();

private:
    struct Found
    {
        QList<CleanItem> items;
        QSet<QString> folders; ///< ids of the path items that were folders when found
    };

    void read(const CleanCategory& row);
    void land(const QString& categoryId, const Found& found);
    /// What a clean did: what it freed and how many items failed, which paths and commands
    /// failed, and which it never reached because it was stopped.
    struct Outcome
    {
        qint64 freed = 0;
        qint64 failures = 0;
        QSet<QString> failedPaths; ///< path items, by path
        QSet<QString> failedIds;   ///< command items, by id
        QSet<QString> untouched;
        QSet<QString> untouchedIds;
    };
    void finishClean(const QStringList& categoryIds, const QList<CleanItem>& attempted, const Outcome& outcome);
    [[nodiscard]] const CleanCategory* category(const QString& categoryId) const;
    /// The folder "magnifyingglass" opens for an item; empty when it has no such button.
    [[nodiscard]] static QUrl revealUrl(const CleanItem& item);
    [[nodiscard]] QVariantMap itemMap(const CleanItem& item) const;
    [[nodiscard]] QVariantMap categoryMap(const CleanCategory& row) const;
    [[nodiscard]] std::optional<CleanItem> findItem(const QString& itemId) const;

    std::shared_ptr<const ModelServices> m_services;
    AppState* m_app = nullptr;
    QHash<QString, QList<CleanItem>> m_items;
    QSet<QString> m_loading;
    QSet<QString> m_folders;
    QSet<QString> m_selected;
    QSet<QString> m_expanded;
    QStringList m_path;
    bool m_hasScanned = false;
    bool m_isCleaning = false;
    /// The categories the running clean takes items from; their rows say so.
    QSet<QString> m_cleaning;
    bool m_detailPending = false;
    // Last, so that it goes first: nothing lands on a model that is being taken apart.
    Jobs m_jobs{this};
};

} // namespace nubo
