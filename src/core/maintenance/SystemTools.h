#pragma once

#include "core/files/SystemRoots.h"

#include <QString>

namespace nubo {

/// Who the user is and where the performance pane's tools and launch folders are. Production
/// builds it once from the machine (`system`); tests point it at stand-in tools and folders in a
/// temporary tree. The command lines handed to the administrator are fixed texts and do not read
/// it: they always name the system's own tools.
struct SystemTools
{
    uint userId = 0;
    QString launchctl = QStringLiteral("/bin/launchctl");
    QString tmutil = QStringLiteral("/usr/bin/tmutil");
    /// The shell that runs a maintenance task's command line as the user.
    QString shell = QStringLiteral("/bin/sh");
    QString userAgents; ///< the user's own launch agents, "Library/LaunchAgents" in the home folder
    QString agents = QStringLiteral("/Library/LaunchAgents");
    QString daemons = QStringLiteral("/Library/LaunchDaemons");

    /// The user's gui domain of launchd, "gui/" and the user id ("gui/501").
    [[nodiscard]] QString guiDomain() const { return QStringLiteral("gui/") + QString::number(userId); }

    /// This process's real user id and the system's tools, with the launch folders below `roots`.
    [[nodiscard]] static SystemTools system(const SystemRoots& roots);
};

} // namespace nubo
