#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"

#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace nubo {

/// The folder listing most cleanup categories are built on: the direct entries of one folder,
/// filtered, measured, named and sorted largest first.
class FolderRule
{
public:
    explicit FolderRule(const CleanContext& context) : m_context(context) {}

    /// Every direct entry of `folder` (hidden ones too) that is worth offering: not named in
    /// `excluding`, not ".DS_Store" or ".localized"; at least `olderThanDays` days since its last
    /// content change when given (an entry whose date cannot be read is kept); owned by the user
    /// running us when `ownedByUser` (an entry whose owner cannot be read is not); allowed by the
    /// safety gate; and at least one byte on disk. With `flattenDepth` above 0 a sub-folder is
    /// never an item itself: it is opened and its entries take its place, that many levels deep.
    /// Entries of a "DerivedData" folder are named by their project; those of "Caches", "Logs",
    /// "HTTPStorages" and "WebKit" by their owning application where one is known. A gated,
    /// missing or unreadable folder gives nothing. Equal sizes keep the listing order.
    [[nodiscard]] QList<CleanItem> children(const QString& folder, const QSet<QString>& excluding = {},
                                            std::optional<int> olderThanDays = std::nullopt,
                                            bool ownedByUser = false, int flattenDepth = 0) const;

private:
    [[nodiscard]] QList<CleanItem> collect(const QString& folder, const QSet<QString>& excluding,
                                           const std::optional<QDateTime>& cutoff, bool ownedByUser,
                                           int flattenDepth) const;
    void name(CleanItem& item, const QString& folderName, const QString& entryName) const;

    const CleanContext& m_context;
};

/// Sorts items largest first, keeping the order of equal sizes.
void sortBySize(QList<CleanItem>& items);

} // namespace nubo
