#pragma once

#include "core/cleanup/CleanCategory.h"
#include "models/app/BackgroundWork.h"
#include "models/app/ModelServices.h"

#include <QFuture>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

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
    /// Category id → list of item maps: id, name, detail, subtitle, size, sizeText, selected.
    Q_PROPERTY(QVariantMap items READ itemMaps NOTIFY categoriesChanged)
    Q_PROPERTY(QStringList selected READ selectedIds NOTIFY selectionChanged)
    Q_PROPERTY(QStringList expanded READ expanded NOTIFY expandedChanged)
    Q_PROPERTY(QStringList path READ path WRITE setPath NOTIFY pathChanged)
    Q_PROPERTY(bool hasScanned READ hasScanned NOTIFY hasScannedChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(bool isCleaning READ isCleaning NOTIFY isCleaningChanged)
    Q_PROPERTY(qint64 totalSelected READ totalSelected NOTIFY categoriesChanged)
    Q_PROPERTY(qint64 totalFound READ totalFound NOTIFY categoriesChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)

public:
    enum class CategoryState
    {
        None,
        All,
        Partial
    };

    explicit CleanModel(const ModelServices& services, QObject* parent = nullptr);
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

    [[nodiscard]] QVariantList categories() const;
    [[nodiscard]] QVariantMap itemMaps() const;
    [[nodiscard]] QStringList expanded() const;
    [[nodiscard]] const QStringList& path() const { return m_path; }
    void setPath(const QStringList& path);
    [[nodiscard]] bool hasScanned() const { return m_hasScanned; }
    [[nodiscard]] bool isScanning() const { return !m_loading.isEmpty(); }
    [[nodiscard]] bool isCleaning() const { return m_isCleaning; }

    /// Runs every category's rule; each list replaces the old one as it arrives, and the items of
    /// categories that start selected are selected.
    Q_INVOKABLE void scan();
    /// All selected → none; none or some → all.
    Q_INVOKABLE void toggleCategory(const QString& categoryId);
    Q_INVOKABLE void toggleItem(const QString& itemId);
    Q_INVOKABLE void toggleExpanded(const QString& categoryId);
    /// Cleans the selected items of every category.
    Q_INVOKABLE void clean();
    /// Cleans the selected items of these categories only; the others keep their selection.
    /// Nothing selected, or a clean already running: nothing happens.
    Q_INVOKABLE void clean(const QStringList& categoryIds);

signals:
    void categoriesChanged();
    void selectionChanged();
    void expandedChanged();
    void pathChanged();
    void hasScannedChanged();
    void isScanningChanged();
    void isCleaningChanged();

private:
    void land(const QString& categoryId, quint64 generation, const QList<CleanItem>& found);
    void finishClean(const QStringList& categoryIds, const QList<CleanItem>& attempted, qint64 freed,
                     const QSet<QString>& failedPaths, const QSet<QString>& failedNames, qint64 failures);
    [[nodiscard]] const CleanCategory* category(const QString& categoryId) const;
    [[nodiscard]] QVariantMap itemMap(const CleanItem& item) const;

    const ModelServices& m_services;
    AppState* m_app = nullptr;
    QHash<QString, QList<CleanItem>> m_items;
    QSet<QString> m_loading;
    QHash<QString, quint64> m_generation;
    QSet<QString> m_selected;
    QSet<QString> m_expanded;
    QStringList m_path;
    bool m_hasScanned = false;
    bool m_isCleaning = false;
    BackgroundWork m_work;
};

} // namespace nubo
