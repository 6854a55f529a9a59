#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"

#include <QList>

namespace nubo::DeveloperCleaners {

/// The package managers' download caches (Homebrew, npm, pnpm, Yarn, pip, CocoaPods, SwiftPM, Go,
/// Gradle, Bun, Cargo), one item per tool whose folder exists and holds something, largest first.
[[nodiscard]] QList<CleanItem> packageCaches(const CleanContext& context);

/// The "node_modules" folders of projects untouched for 30 days, largest first. A project was
/// last touched when its "package.json" was modified, else when its folder was. The walk of the
/// home folder never enters hidden folders, packages, a "node_modules" folder, the Library, the
/// applications and media folders, guarded folders, or anything deeper than eight levels.
[[nodiscard]] QList<CleanItem> staleNodeModules(const CleanContext& context);

} // namespace nubo::DeveloperCleaners
