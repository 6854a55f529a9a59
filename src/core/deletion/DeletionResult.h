#pragma once

#include <QList>
#include <QStringList>

namespace nubo {

/// One thing to delete: its path and the size measured when it was found. The size is what the
/// user was shown, so it is what counts as freed, not a new measurement.
struct DeletionItem
{
    QString path;
    qint64 size = 0;
};

/// An item that is still there, with the reason shown to the user.
struct DeletionFailure
{
    QString path;
    QString reason;

    friend bool operator==(const DeletionFailure&, const DeletionFailure&) = default;
};

/// What one batch deletion did. Every item of the batch ends in exactly one of the two lists,
/// in the caller's order within each, unless the batch was stopped: then the items never
/// reached are in neither.
struct DeletionResult
{
    /// Sum of the sizes the caller gave for the items that are gone; an item that was already
    /// missing adds nothing.
    qint64 freed = 0;
    /// Items that are gone: removed now, or already absent.
    QStringList deleted;
    QList<DeletionFailure> failed;
    /// The batch was asked to stop before its end.
    bool stopped = false;
};

} // namespace nubo
