#pragma once

#include <QHashFunctions>
#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

namespace nubo {

/// One removable thing shown in a list: a path to delete, or a command-line tool to run in its
/// place. Everything that can be cleaned travels as this one value, from the cleanup categories
/// to the leftovers of an application. Two items are equal only when every field is; `id`
/// alone identifies the row (for a path, the full path).
struct CleanItem
{
    /// Delete this path and everything beneath it.
    struct Remove
    {
        QString path;
        friend bool operator==(const Remove&, const Remove&) = default;
    };
    /// Run `program` with `arguments` instead of deleting a path.
    struct Command
    {
        QString program;
        QStringList arguments;
        friend bool operator==(const Command&, const Command&) = default;
    };
    using Action = std::variant<Remove, Command>;

    QString id;
    QString name;
    QString detail;
    qint64 size = 0;
    Action action;
    std::optional<QString> subtitle;
    std::optional<QString> appURL; ///< the application bundle the item belongs to, when known
    /// Paths removed together with the item's own, never shown or counted apart (a trashed
    /// file's information entry on Linux).
    QStringList companions;

    CleanItem() = default;
    CleanItem(QString id, QString name, QString detail, qint64 size, Action action,
              std::optional<QString> subtitle = std::nullopt, std::optional<QString> appURL = std::nullopt);

    /// An item that removes `path`: its id is the path, its detail the path in tilde form
    /// (against `home`), its name `name` or else the path's last component (the file manager's
    /// display name where the platform offers one is for the caller to pass), and its size
    /// `size` or else the allocated size of the whole tree under the path, measured now.
    [[nodiscard]] static CleanItem atPath(const QString& path, const QString& home,
                                          std::optional<QString> name = std::nullopt,
                                          std::optional<qint64> size = std::nullopt);

    /// The path a remove action deletes; none for a command.
    [[nodiscard]] std::optional<QString> url() const;

    friend bool operator==(const CleanItem&, const CleanItem&) = default;
};

[[nodiscard]] size_t qHash(const CleanItem& item, size_t seed = 0);

} // namespace nubo
