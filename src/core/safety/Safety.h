#pragma once

#include "core/files/SystemRoots.h"
#include "core/safety/SafetyRules.h"
#include "core/safety/Verdict.h"

#include <QSet>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace nubo {

/// The one gate every deletion passes: at discovery, so a protected path never shows in a list,
/// and again right before anything is removed. What it protects is one system's `SafetyRules`:
/// the system, the top of the home folder, the well-known containers of removable things (which
/// may be emptied item by item but never removed whole), the user's secrets and mail, other
/// users' files and other volumes. Both the home the program works on and the user's real home
/// are protected. A path is judged where it stands: its parent folder is resolved, links and
/// all, but a link itself is never followed, so removing it can never reach its target.
///
/// Safe to call from any thread. The listings some rules need (a Library folder, the user's
/// folder names) are taken once, on first use; the mount table is read again when it may have
/// changed, at most once a second.
class Safety
{
public:
    /// The mount points of the system, for the other-volumes rule (the kernel's table by default).
    using MountSource = std::function<QStringList()>;

    Safety(SystemRoots roots, SafetyRules rules, MountSource mounts = {});
    Safety(const Safety&) = delete;
    Safety& operator=(const Safety&) = delete;

    /// A verdict together with the path exactly as it was judged: standardised, parent folder
    /// resolved, the last name as it stands. What is allowed is that path, so a deletion acts on
    /// it and on nothing resolved again later.
    struct Assessment
    {
        Verdict verdict;
        QString path;
    };

    [[nodiscard]] Assessment assess(const QString& path) const;
    [[nodiscard]] Verdict check(const QString& path) const { return assess(path).verdict; }
    /// As above, for a URL from the user interface: anything but a local file is refused.
    [[nodiscard]] Verdict check(const QUrl& url) const;
    [[nodiscard]] bool isAllowed(const QString& path) const { return check(path).isAllowed(); }

    [[nodiscard]] const SafetyRules& rules() const { return m_rules; }

private:
    struct Normalised
    {
        QString path;    ///< the path as the rules read it
        QString landing; ///< where it lands through links above a missing parent, when elsewhere
    };
    struct Tree
    {
        QString path;
        bool namePrefix = false;
        QStringList exempt; ///< folders below it left to the other rules
    };

    [[nodiscard]] Normalised normalised(const QString& path) const;
    [[nodiscard]] Verdict judge(const QString& path) const;
    [[nodiscard]] QStringList expand(const SafetyRules::Place& place) const;
    [[nodiscard]] bool insideHome(const QString& path) const;
    [[nodiscard]] bool onOtherVolume(const QString& path) const;
    void buildProtectedRoots() const;

    SystemRoots m_roots;
    SafetyRules m_rules;
    MountSource m_mounts;
    QStringList m_homes;       // every spelling of every protected home
    QStringList m_libraries;   // the system Library, as given and resolved
    QString m_temporary;       // the per-user temporary folder, resolved
    QStringList m_temporaries; // it and the shared ones, resolved: never "other volumes"
    QList<Tree> m_trees;
    mutable std::once_flag m_rootsOnce;
    mutable QSet<QString> m_protectedRoots;
    mutable std::mutex m_volumesMutex;
    mutable std::shared_ptr<const QStringList> m_volumes;
    mutable std::chrono::steady_clock::time_point m_volumesRead;
};

} // namespace nubo
