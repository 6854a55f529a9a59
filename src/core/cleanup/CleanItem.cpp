#include "core/cleanup/CleanItem.h"

#include "core/files/Location.h"

namespace nubo {

namespace {

QString lastComponent(const QString& path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(QLatin1Char('/')))
        trimmed.chop(1);
    const qsizetype slash = trimmed.lastIndexOf(QLatin1Char('/'));
    return slash < 0 || trimmed.size() == 1 ? trimmed : trimmed.mid(slash + 1);
}

size_t hashOptional(const std::optional<QString>& value, size_t seed)
{
    return value ? qHashMulti(seed, true, *value) : qHashMulti(seed, false);
}

} // namespace

CleanItem::CleanItem(QString itemId, QString itemName, QString itemDetail, qint64 itemSize, Action itemAction,
                     std::optional<QString> itemSubtitle, std::optional<QString> itemAppURL)
    : id(std::move(itemId))
    , name(std::move(itemName))
    , detail(std::move(itemDetail))
    , size(itemSize)
    , action(std::move(itemAction))
    , subtitle(std::move(itemSubtitle))
    , appURL(std::move(itemAppURL))
{
}

CleanItem CleanItem::atPath(const QString& path, const QString& home, std::optional<QString> itemName,
                            std::optional<qint64> itemSize)
{
    return CleanItem(path, itemName ? std::move(*itemName) : lastComponent(path), Location::tildePath(path, home),
                     itemSize ? *itemSize : Location::allocatedSize(path), Remove{path});
}

std::optional<QString> CleanItem::url() const
{
    if (const auto* remove = std::get_if<Remove>(&action))
        return remove->path;
    return std::nullopt;
}

size_t qHash(const CleanItem& item, size_t seed)
{
    size_t hash = qHashMulti(seed, item.id, item.name, item.detail, item.size, item.action.index());
    if (const auto* remove = std::get_if<CleanItem::Remove>(&item.action))
        hash = qHashMulti(hash, remove->path);
    else if (const auto* command = std::get_if<CleanItem::Command>(&item.action))
        hash = qHashMulti(hash, command->program, command->arguments);
    hash = hashOptional(item.subtitle, hash);
    return hashOptional(item.appURL, hash);
}

} // namespace nubo
