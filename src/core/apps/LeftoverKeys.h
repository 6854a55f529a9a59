#pragma once

#include "core/apps/InstalledApp.h"

#include <QString>

#include <optional>

namespace nubo {

/// The lower-case keys that Library entries of one application are matched against:
/// its identifier, its name, the name without spaces, the vendor (the second part of an
/// identifier with at least three parts: acme for com.acme.writer) and the name without a
/// leading "<vendor> " (writer for Acme Writer).
struct LeftoverKeys
{
    std::optional<QString> id;
    QString name;
    QString compact;
    std::optional<QString> vendor;
    QString stripped;

    [[nodiscard]] static LeftoverKeys of(const InstalledApp& app);

    /// Identifiers shorter than this are never matched by identifier: they would match too much.
    static constexpr qsizetype kMinimumIdLength = 5;
    /// Names must be longer than this to be matched by name.
    static constexpr qsizetype kShortestName = 2;

    [[nodiscard]] bool idUsable() const { return id && id->size() >= kMinimumIdLength; }
    [[nodiscard]] bool nameUsable() const { return name.size() > kShortestName; }
};

} // namespace nubo
