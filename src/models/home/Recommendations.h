#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace nubo {

/// One suggestion on the home screen: what to look at next and the button that goes there.
struct Recommendation
{
    /// What the button does.
    enum class Action
    {
        OpenMap,
        RevealCategory,
        ShowUnusedApps
    };

    QString id;
    QString symbol;
    QString title;
    QString detail;
    qint64 size = 0; ///< 0 when the suggestion has no size
    QString color;   ///< a palette name: "red", "blue", a category's colour…
    QString action;  ///< the button's label
    Action perform = Action::OpenMap;
    QString categoryId; ///< for RevealCategory
    /// The detail already ends with the size ("3 elementos · 1,2 GB"), so the row does not
    /// write it a second time beside the button.
    bool sizeInDetail = false;

    [[nodiscard]] QVariantMap toMap() const;
    friend bool operator==(const Recommendation&, const Recommendation&) = default;
};

namespace Recommendations {

/// What the suggestions are made from: plain figures read off the state and its models.
struct Inputs
{
    struct Category
    {
        QString id;
        QString symbol;
        QString title;
        QString color;
        qint64 count = 0;
        qint64 size = 0;
    };

    double diskFraction = 0;
    /// The categories that may be suggested, in catalogue order.
    QList<Category> categories;
    /// The unused applications' names, in the apps model's order, and their sizes once measured.
    QStringList unusedApps;
    qint64 unusedSize = 0;
    bool unusedSizesLoaded = false;
    bool mapScanned = false;
};

/// The suggestions, most urgent first: a nearly full disk always leads; the others follow by
/// size, largest first, and equal sizes keep the order they are built in (disk, categories in
/// catalogue order, unused apps, the unexplored map).
[[nodiscard]] QList<Recommendation> build(const Inputs& inputs);

} // namespace Recommendations
} // namespace nubo
