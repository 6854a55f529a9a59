#pragma once

#include "core/cleanup/NamedColor.h"

#include <QString>

#include <optional>

namespace nubo {

/// One of the one-click maintenance tasks of the performance pane: a fixed shell command line,
/// run as the user or, when `needsAdmin` is set, behind the administrator prompt. `id` is the
/// stable key outcomes are kept under.
struct MaintenanceTask
{
    /// How a run ended, as the task's row shows it.
    struct Outcome
    {
        bool ok = false;
        QString message;

        friend bool operator==(const Outcome&, const Outcome&) = default;
    };

    QString id;
    QString title;
    QString detail;
    QString symbol;
    NamedColor color = NamedColor::gray;
    bool needsAdmin = false;
    std::optional<QString> caution;
    /// One shell command line, possibly several commands joined by "; ".
    QString command;

    friend bool operator==(const MaintenanceTask&, const MaintenanceTask&) = default;
};

} // namespace nubo
