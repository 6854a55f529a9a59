#pragma once

#include "core/files/HostSystem.h"
#include <QString>
#include <QStringList>

namespace nubo::HomeTexts {

/// What the header says before the first analysis.
[[nodiscard]] QString introduction();
/// The header's headline once the cleanup has been scanned: "Analizando…" while an analysis
/// runs, "Todo limpio" when nothing was found, otherwise "<size> que puedes recuperar".
[[nodiscard]] QString headline(bool analyzing, qint64 found);
/// "<available> disponibles de <total>".
[[nodiscard]] QString diskLine(qint64 available, qint64 total);
/// "<n> zonas revisadas".
[[nodiscard]] QString zonesLine(qint64 examined);
/// "<size> se pueden borrar sin riesgo. El resto, mejor que lo revises."
[[nodiscard]] QString safeShare(qint64 safeSize);
/// The explanation beside the one-click clean of the safe categories.
[[nodiscard]] QString safeExplanation();
/// The safe-clean button: "Limpiar <size>" once something safe was found, else "Limpiar".
[[nodiscard]] QString safeButton(qint64 safeSize);
/// The line shown instead of an empty list of recommendations, naming the user's machine as
/// its system does ("tu Mac", "tu equipo").
[[nodiscard]] QString nothingToReview(HostSystem system);
/// The promise at the foot of the screen: what Nubo never touches on that system.
[[nodiscard]] QString footer(HostSystem system);

/// A category's findings: "1 elemento · 60 MB", "3 elementos · 1,2 GB".
[[nodiscard]] QString categoryDetail(qint64 count, qint64 size);
/// "1 app sin usar" or "<n> apps sin usar".
[[nodiscard]] QString unusedTitle(qint64 count);
/// "Sin abrir en más de 3 meses: " with the first three names, joined by ", ".
[[nodiscard]] QString unusedDetail(const QStringList& names);

/// A category is recommended from 50 MiB on: 52,428,800 bytes is, 52,428,799 is not.
[[nodiscard]] bool isWorthReviewing(qint64 size);
/// The disk warning appears only above 90 % used; exactly 90 % is still fine.
[[nodiscard]] bool isAlmostFull(double fraction);

} // namespace nubo::HomeTexts
