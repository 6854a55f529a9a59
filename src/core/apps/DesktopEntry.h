#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <optional>

namespace nubo {

/// One desktop entry (a ".desktop" file) as a menu reads it: the keys of its "[Desktop Entry]"
/// group with their escapes undone. Other groups (actions) and comments are skipped; a later
/// copy of a key replaces an earlier one. A plain value, safe to pass between threads.
class DesktopEntry
{
public:
    /// The entry in `bytes`; empty (no keys) when there is no "[Desktop Entry]" group.
    [[nodiscard]] static DesktopEntry parse(const QByteArray& bytes);
    /// The entry stored at `path`; none when it cannot be read or is larger than any real entry.
    [[nodiscard]] static std::optional<DesktopEntry> read(const QString& path);

    [[nodiscard]] bool isEmpty() const { return m_keys.isEmpty(); }
    [[nodiscard]] bool has(const QString& key) const { return m_keys.contains(key); }
    [[nodiscard]] QString value(const QString& key) const { return m_keys.value(key); }
    /// The value for the user's language: "Name[es_MX]", then "Name[es]", then "Name", for the
    /// locale "es_MX" (an encoding or modifier in the locale is ignored).
    [[nodiscard]] QString localized(const QString& key, const QString& locale) const;
    /// A boolean key: only "true" is true.
    [[nodiscard]] bool flag(const QString& key) const { return value(key) == QLatin1String("true"); }

    /// The command line of "Exec" split into its arguments the way a launcher does: double-quoted
    /// arguments keep their spaces, a backslash inside quotes escapes the next character, field
    /// codes ("%f", "%U"…) are dropped and "%%" reads "%". Leading "env NAME=value" words are
    /// skipped, so the first argument is the program started. Empty for a missing or
    /// unbalanced line.
    [[nodiscard]] QStringList command() const;
    /// The first argument of `command`; empty when there is none.
    [[nodiscard]] QString program() const;

private:
    QHash<QString, QString> m_keys;
};

} // namespace nubo
