#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace nubo {

/// One launch agent or daemon: the property list that makes the system start a program at login
/// or at boot, with what the performance pane shows of it. Equal only when every field is.
struct LaunchItem
{
    /// Whose the item is, which decides the folder it lives in and who may change it.
    enum class Scope
    {
        user,   ///< the user's own agents, "Library/LaunchAgents" in the home folder
        agent,  ///< agents of every user, "/Library/LaunchAgents"
        daemon, ///< system-wide daemons, "/Library/LaunchDaemons": changes need the administrator
    };

    QString url; ///< the property-list file
    QString label;
    QString program;
    Scope scope = Scope::user;
    bool isEnabled = true;         ///< not marked disabled
    bool isLoaded = false;         ///< currently known to launchd
    QString name;                  ///< the owning application's name where one is found
    std::optional<QString> appURL; ///< the owning application's bundle, for its icon

    /// Changing the item asks for the administrator password.
    [[nodiscard]] bool needsAdmin() const { return scope == Scope::daemon; }

    /// The label shown for a scope: "Tu usuario", "Todos los usuarios", "Sistema".
    [[nodiscard]] static QString scopeLabel(Scope scope);

    friend bool operator==(const LaunchItem&, const LaunchItem&) = default;
};

[[nodiscard]] size_t qHash(const LaunchItem& item, size_t seed = 0);

} // namespace nubo
