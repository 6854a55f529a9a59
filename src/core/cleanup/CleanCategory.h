#pragma once

#include "core/cleanup/CleanGroup.h"
#include "core/cleanup/CleanItem.h"
#include "core/cleanup/NamedColor.h"

#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace nubo {

/// One row of the cleanup catalogue: its texts, icon, tint, heading, whether its items start
/// selected, an optional warning, and the rule that finds its items. `scan` blocks on the disk
/// or on tools, so callers run it away from the user-interface thread; several categories may
/// scan at once.
struct CleanCategory
{
    using Scan = std::function<QList<CleanItem>()>;

    QString id;
    CleanGroup group = CleanGroup::system;
    QString title;
    QString subtitle;
    QString symbol; ///< the SF Symbol name of the icon
    NamedColor color = NamedColor::gray;
    bool selectedByDefault = false;
    std::optional<QString> caution;
    Scan scan;
};

} // namespace nubo
