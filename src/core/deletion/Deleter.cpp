#include "core/deletion/Deleter.h"

#include "core/admin/AdminScript.h"
#include "core/deletion/Removal.h"
#include "core/format/CheckedMath.h"
#include "core/safety/Safety.h"
#include "platform/AdminRunner.h"

#include <QPromise>
#include <QThreadPool>

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

QFuture<DeletionResult> Deleter::deleteItems(QList<DeletionItem> items, bool allowAdmin) const
{
    auto promise = std::make_shared<QPromise<DeletionResult>>();
    QFuture<DeletionResult> future = promise->future();
    promise->start();
    m_pool.start([this, promise, items = std::move(items), allowAdmin] {
        promise->addResult(deleteItemsNow(items, allowAdmin));
        promise->finish();
    });
    return future;
}

DeletionResult Deleter::deleteItemsNow(const QList<DeletionItem>& items, bool allowAdmin) const
{
    DeletionResult result;
    // Queued for the administrator: the caller's item and the path that is acted on.
    QList<std::pair<DeletionItem, QString>> adminQueue;

    for (const DeletionItem& item : items) {
        const Verdict verdict = m_safety.check(item.path);
        if (!verdict.isAllowed()) {
            result.failed.append({item.path, verdict.reason()});
            continue;
        }
        // The disk is acted on exactly where the gate looked: the parent folder resolved and the
        // last name as it stands. The text as given could differ from it ("link/" or "link/."
        // reach through a link the gate judged as a link; "link/../x" lands beside its target).
        const QString target = m_safety.normalise(item.path);
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
            adminQueue.append({item, target});
        } else {
            result.failed.append({item.path, Removal::systemMessage(error)});
        }
    }

    if (adminQueue.isEmpty())
        return result;

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

bool Deleter::removeAsAdmin(const QStringList& paths) const
{
    // Asked again on purpose: nothing the gate has not just allowed reaches the privileged command.
    QStringList allowed;
    for (const QString& path : paths) {
        if (m_safety.isAllowed(path) && !path.contains(QChar::ReplacementCharacter))
            allowed << path;
    }
    if (allowed.isEmpty())
        return false;
    return m_admin.run(AdminScript::forRemoval(allowed)) != AdminOutcome::Failed;
}

} // namespace nubo
