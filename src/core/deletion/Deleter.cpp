#include "core/deletion/Deleter.h"

#include "core/admin/AdminScript.h"
#include "core/deletion/Removal.h"
#include "core/files/NativePath.h"
#include "core/format/CheckedMath.h"
#include "core/safety/Safety.h"
#include "platform/AdminRunner.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace nubo {

namespace {

// A size below zero can only come from a caller's bug; it must not shrink the freed total.
void addFreed(DeletionResult& result, const DeletionItem& item)
{
    addChecked(result.freed, std::max<qint64>(0, item.size));
}

} // namespace

Deleter::Deleter(const Safety& safety, AdminRunner& admin) : m_safety(safety), m_admin(admin) {}

QString Deleter::notDeletedReason()
{
    return QStringLiteral("No se pudo borrar");
}

QString Deleter::adminDeniedReason()
{
    return QStringLiteral("Permiso de administrador denegado");
}

DeletionResult Deleter::deleteItems(const QList<DeletionItem>& items, bool allowAdmin, StopToken stop) const
{
    DeletionResult result;
    // Queued for the administrator: the caller's item and the path that is acted on.
    QList<std::pair<DeletionItem, QString>> adminQueue;

    for (const DeletionItem& item : items) {
        if (stop.stopRequested()) {
            result.stopped = true;
            return result;
        }
        // The disk is acted on exactly where the gate looked, resolved once: the parent folder
        // resolved and the last name as it stands. The text as given could differ from it ("link/"
        // or "link/." reach through a link the gate judged as a link; "link/../x" lands beside
        // its target), and a second resolution could land somewhere the gate never judged.
        const Safety::Assessment judged = m_safety.assess(item.path);
        if (!judged.verdict.isAllowed()) {
            result.failed.append({item.path, judged.verdict.reason()});
            continue;
        }
        const QString& target = judged.path;
        // A name the disk gave in bytes that are not UTF-8 came back with replacement characters:
        // this text no longer names that file, and may name another one. Acting on it could
        // remove the wrong item, or call a file that is still there "already gone".
        if (target.contains(QChar::ReplacementCharacter)) {
            result.failed.append({item.path, notDeletedReason()});
            continue;
        }
        // Only the system's "nothing here" makes an item already gone. A link is looked at, not
        // followed, so a dangling one is present and gets removed.
        if (Removal::presence(target) == Removal::Presence::Absent) {
            result.deleted.append(item.path);
            continue;
        }
        const int error = Removal::removeRecursively(target);
        if (error == 0) {
            result.deleted.append(item.path);
            addFreed(result, item);
        } else if (Removal::isRightsFailure(error) && allowAdmin) {
            if (reachesAdministrator(target))
                adminQueue.append({item, target});
            else
                result.failed.append({item.path, notDeletedReason()});
        } else {
            result.failed.append({item.path, Removal::systemMessage(error)});
        }
    }

    if (adminQueue.isEmpty())
        return result;
    // Stopped before the prompt: what waited for it was never tried by the administrator.
    if (stop.stopRequested()) {
        result.stopped = true;
        return result;
    }

    QStringList targets;
    for (const auto& queued : adminQueue)
        targets << queued.second;
    const bool ran = removeAsAdmin(targets);
    for (const auto& [item, target] : adminQueue) {
        if (!ran) {
            result.failed.append({item.path, adminDeniedReason()});
        } else if (Removal::presence(target) == Removal::Presence::Absent) {
            result.deleted.append(item.path);
            addFreed(result, item);
        } else {
            result.failed.append({item.path, notDeletedReason()});
        }
    }
    return result;
}

bool Deleter::reachesAdministrator(const QString& path) const
{
    // A path reaches the privileged command byte for byte, or not at all.
    return !path.contains(QChar::ReplacementCharacter) &&
           (m_admin.carriesAnyBytes() || !NativePath::hasEscapedBytes(path));
}

bool Deleter::removeAsAdmin(const QStringList& paths) const
{
    // Asked again on purpose: nothing the gate has not just allowed reaches the privileged command.
    QStringList allowed;
    for (const QString& path : paths) {
        if (m_safety.isAllowed(path) && reachesAdministrator(path))
            allowed << path;
    }
    if (allowed.isEmpty())
        return false;
    return m_admin.run(AdminScript::forRemoval(allowed)) != AdminOutcome::Failed;
}

} // namespace nubo
