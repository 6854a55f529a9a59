#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/stop/StopToken.h"
#include "core/cleanup/CleanItem.h"

#include <QList>
#include <QString>
#include <QStringList>


namespace nubo {

class ToolRunner;

/// The cleaners that ask a tool what can go and whose items are cleaned by running a tool:
/// unavailable simulator devices, simulator runtimes and Docker's reclaimable data, and the runner
/// of such command items. Output a tool prints in any other shape than expected gives no items;
/// nothing here ever deletes a path itself.
namespace CommandCleaners {

/// Simulator devices the developer tools report as unavailable, each cleaned by
/// "xcrun simctl delete <udid>" and sized by its folder; a device whose folder holds nothing is
/// left out. A device whose udid is not a plain UUID is never offered, so no odd listing can turn
/// the command into "delete all" or an option.
[[nodiscard]] QList<CleanItem> unavailableSimulators(const CleanContext& context);

/// Installed simulator runtimes that may be deleted, each cleaned by
/// "xcrun simctl runtime delete <identifier>", sized as the tool reports them.
[[nodiscard]] QList<CleanItem> simulatorRuntimes(const CleanContext& context);

/// One item for everything "docker system df" reports as reclaimable, cleaned by
/// "docker system prune -a -f"; none when Docker is missing, silent or reports nothing.
[[nodiscard]] QList<CleanItem> dockerItems(const CleanContext& context);

/// Bytes in a size as Docker prints it, in decimal units: "2.5GB" is 2,500,000,000, "512kB"
/// 512,000, "3B" 3. Text without a known unit, or that does not read as a number, is 0, and so is
/// a negative size or one too large to be real (an exabyte or more).
[[nodiscard]] qint64 parseDockerSize(const QString& text);

/// What running command items gave: the bytes announced for those that succeeded, their ids, and
/// the ids of those that failed or ran past their time (ids, since two items may share a name:
/// two simulators called "iPhone 15").
struct CommandOutcome
{
    qint64 freed = 0;
    QStringList done;
    QStringList failed;
    friend bool operator==(const CommandOutcome&, const CommandOutcome&) = default;
};

/// Runs the command items among `items` one after another on the calling thread, each with ten
/// minutes to finish; items that remove a path are left to the deleter. Exit status 0 counts the
/// item's announced size as freed (nothing is measured again); anything else lists its id as
/// failed. Asked to stop, the running command is ended and the items never reached are in
/// neither list.
[[nodiscard]] CommandOutcome runCommands(const ToolRunner& tools, const QList<CleanItem>& items,
                                         StopToken stop = {});

} // namespace CommandCleaners

} // namespace nubo
