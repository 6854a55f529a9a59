#include "core/deletion/Deleter.h"

#include "core/admin/AdminScript.h"
#include "core/deletion/Removal.h"
#include "core/format/CheckedMath.h"
#include "core/safety/Safety.h"
#include "platform/AdminRunner.h"

#include <QPromise>
#include <QThreadPool>

#include <memory>

namespace nubo {

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
    QThreadPool::globalInstance()->start([this, promise, items = std::move(items), allowAdmin] {
        promise->addResult(deleteItemsNow(items, allowAdmin));
        promise->finish();
    });
    return future;
}

DeletionResult Deleter::deleteItemsNow(const QList<DeletionItem>& items, bool allowAdmin) const
{
    DeletionResult result;
    QList<DeletionItem> adminQueue;

    for (const DeletionItem& item : items) {
        const Verdict verdict = m_safety.check(item.path);
        if (!verdict.isAllowed()) {
            result.failed.append({item.path, verdict.reason()});
            continue;
        }
        // A name the disk gave in bytes that are not UTF-8 came back with replacement characters:
        // this text no longer names that file, and may name another one. Acting on it could
        // remove the wrong item, or call a file that is still there "already gone".
        if (item.path.contains(QChar::ReplacementCharacter)) {
            result.failed.append({item.path, notDeletedReason()});
            continue;
        }
        // Only the system's "nothing here" makes an item already gone. A link is looked at, not
        // followed, so a dangling one is present and gets removed.
        if (Removal::presence(item.path) == Removal::Presence::Absent) {
            result.deleted.append(item.path);
            continue;
        }
        const int error = Removal::removeRecursively(item.path);
        if (error == 0) {
            result.deleted.append(item.path);
            addChecked(result.freed, item.size);
        } else if (Removal::isRightsFailure(error) && allowAdmin) {
            adminQueue.append(item);
        } else {
            result.failed.append({item.path, Removal::systemMessage(error)});
        }
    }

    if (adminQueue.isEmpty())
        return result;

    QStringList queuedPaths;
    for (const DeletionItem& item : adminQueue)
        queuedPaths << item.path;
    const bool ran = removeAsAdmin(queuedPaths);
    for (const DeletionItem& item : adminQueue) {
        if (!ran) {
            result.failed.append({item.path, adminDeniedReason()});
        } else if (Removal::presence(item.path) == Removal::Presence::Absent) {
            result.deleted.append(item.path);
            addChecked(result.freed, item.size);
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
