#pragma once

#include "core/files/SystemRoots.h"
#include "core/safety/Verdict.h"

#include <QSet>
#include <QStringList>
#include <QUrl>

#include <mutex>

namespace nubo {

/// The one gate every deletion passes: at discovery, so a protected path never shows in a list,
/// and again right before anything is removed. The rules are fixed: the system, the top of the
/// home folder, the well-known containers of removable things (which may be emptied item by item
/// but never removed whole), iCloud, Mail, Messages, the keychains, other volumes and the inside
/// of photo libraries. A path is judged where it stands: its parent folder is resolved, links and
/// all, but a link itself is never followed, so removing it can never reach its target.
///
/// Safe to call from any thread. The listing of the Library folder that some rules need is taken
/// once, on first use, and kept for the life of the object.
class Safety
{
public:
    explicit Safety(SystemRoots roots);
    Safety(const Safety&) = delete;
    Safety& operator=(const Safety&) = delete;

    [[nodiscard]] Verdict check(const QString& path) const;
    /// As above, for a URL from the user interface: anything but a local file is refused.
    [[nodiscard]] Verdict check(const QUrl& url) const;
    [[nodiscard]] bool isAllowed(const QString& path) const { return check(path).isAllowed(); }

    /// The path exactly as the rules see it: standardised, parent folder resolved, never the
    /// item itself. Exposed for tests and for callers that log what was judged.
    [[nodiscard]] QString normalise(const QString& path) const;

private:
    struct Normalised
    {
        QString path;    ///< the path as the rules read it
        QString landing; ///< where it lands through links above a missing parent, when elsewhere
    };

    [[nodiscard]] Normalised normalised(const QString& path) const;
    [[nodiscard]] Verdict judge(const QString& path) const;
    void buildProtectedRoots() const;

    SystemRoots m_roots;
    QStringList m_homes;         // the home as given, and its resolved form when that differs
    QString m_temporary;         // the per-user temporary folder, resolved
    QStringList m_protectedTrees;
    mutable std::once_flag m_rootsOnce;
    mutable QSet<QString> m_protectedRoots;
};

} // namespace nubo
