#pragma once

#include "core/cleanup/CleanItem.h"
#include "core/cleanup/CleanPlaces.h"
#include "core/files/SystemRoots.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nubo {

class Naming;
class Privacy;
class Safety;
class ToolRunner;

/// What the discovery rules of the cleanup categories work from: the folders of this machine, the
/// gates every path passes, the folder naming, and the way tools are run and found. Production
/// builds one from the real services (`SystemRoots::system()`, `ShellToolRunner`, `Shell::which`);
/// tests point it at a prepared tree and a scripted runner. The services must outlive every rule
/// that uses the context; the context itself is only read, from any number of threads at once.
struct CleanContext
{
    CleanContext(const Safety& gate, const Privacy& guard, const Naming& names, const ToolRunner& runner,
                 SystemRoots folders)
        : safety(gate), privacy(guard), naming(names), tools(runner), roots(std::move(folders)),
          places(CleanPlaces::forMac(roots.home))
    {
    }

    const Safety& safety;
    const Privacy& privacy;
    const Naming& naming;
    const ToolRunner& tools;
    SystemRoots roots;
    /// Where this system keeps what the categories look at: the Mac's unless set.
    CleanPlaces places;
    /// The shared temporary folders where every user leaves files; only the user's own are offered.
    QStringList sharedTemporaries{QStringLiteral("/private/tmp")};
    /// The folders the program itself writes (its cache folders under its identifier and the ones
    /// Qt keeps for it), as exact paths: never offered while we run.
    QStringList ownFolders;
    /// Finds a tool by name on the tool search path (`Shell::which` in production).
    std::function<std::optional<QString>(const QString& name)> findTool;
    /// The leftovers of removed applications, ready as items (the application catalogue's).
    std::function<QList<CleanItem>()> orphans;
    /// The current time; age limits are measured back from it. The clock when unset.
    std::function<QDateTime()> now;
    /// The name the file manager shows for a path (the workspace's); the last path component when
    /// unset.
    std::function<QString(const QString& path)> displayName;

    [[nodiscard]] QDateTime currentTime() const { return now ? now() : QDateTime::currentDateTimeUtc(); }
    [[nodiscard]] std::optional<QString> nameOf(const QString& path) const
    {
        return displayName ? std::optional<QString>(displayName(path)) : std::nullopt;
    }
    /// `relative` joined to the home folder ("Library/Caches" gives "<home>/Library/Caches").
    [[nodiscard]] QString home(const QString& relative) const { return roots.home + QLatin1Char('/') + relative; }
};

} // namespace nubo
