#pragma once

#include "core/deletion/DeletionResult.h"
#include "core/stop/StopToken.h"

namespace nubo {

class AdminRunner;
class Safety;

/// Deletes batches of paths for good: never to the Trash, folders with everything in them.
/// Every item passes the safety gate first; a denied item is reported with the gate's reason and
/// nothing on disk is touched. An item already missing counts as deleted and frees nothing; a
/// dangling link is an item like any other and is removed. When `allowAdmin` is set, the items
/// refused for lack of rights are retried together with one administrator prompt for the whole
/// batch, after the gate has been asked again. A failure never stops the batch: every item ends
/// either deleted or failed with a reason for the user, reported under the path the caller gave.
/// The disk is acted on at the path exactly as the gate judged it (parent folder resolved once,
/// last name as it stands), so no spelling of a path can reach past what was allowed. An item
/// the administrator could remove but whose name cannot be written exactly in the privileged
/// command never reaches it and reads "No se pudo borrar".
///
/// The deleter keeps references to the gate and the runner; whoever owns it owns them too.
class Deleter
{
public:
    Deleter(const Safety& safety, AdminRunner& admin);

    /// Deletes the batch on the calling thread, blocking until done: call it from background
    /// work. Asked to stop, it ends before the next item; the items never reached are neither
    /// deleted nor failed, and `stopped` says so. The administrator prompt, once shown, cannot be
    /// stopped: it ends when the user answers it.
    [[nodiscard]] DeletionResult deleteItems(const QList<DeletionItem>& items, bool allowAdmin,
                                             StopToken stop = {}) const;

    /// One administrator /bin/rm for all `paths` that the gate still allows. False when none is
    /// left or the user refused; true when it ran, and also when the platform could not even
    /// try, since the caller then finds on disk what is still there.
    [[nodiscard]] bool removeAsAdmin(const QStringList& paths) const;

    /// Whether `path` can be named exactly in the administrator's command: a name that is not
    /// UTF-8 travels only where the platform's runner carries bytes.
    [[nodiscard]] bool reachesAdministrator(const QString& path) const;

    static QString notDeletedReason();
    static QString adminDeniedReason();

private:
    const Safety& m_safety;
    AdminRunner& m_admin;
};

} // namespace nubo
