#pragma once

#include <QString>

namespace nubo::ResultTexts {

/// How a result or a figure is tinted: the views map each tone to a colour of the palette.
enum class Tone { Accent, Success, Warning, Critical };

/// The toast after a deletion: "Nada que liberar" or "<size> liberados".
[[nodiscard]] QString toastHeadline(qint64 freed);
/// Its second line, empty when nothing failed: "1 elemento no se pudo borrar" or
/// "N elementos no se pudieron borrar".
[[nodiscard]] QString toastFailures(qint64 failures);
[[nodiscard]] QString toastSymbol(qint64 failures);
[[nodiscard]] Tone toastTone(qint64 failures);

/// The title of the deletion confirmation: "¿Eliminar 3 elementos (1,2 GB)?".
[[nodiscard]] QString confirmationTitle(const QString& verb, qint64 count, qint64 size);
/// Its message, the same for every deletion.
[[nodiscard]] QString confirmationMessage();

/// "<available> disponibles de <total>".
[[nodiscard]] QString diskLine(qint64 available, qint64 total);
/// The start-up disk's name on its card: the volume's own, else "Disco de inicio".
[[nodiscard]] QString diskName(const QString& volumeName);
/// "Liberado hoy: <size>", empty when nothing has been freed yet.
[[nodiscard]] QString freedToday(qint64 freed);
/// The tint of a fullness figure (0 to 1): accent below 0.75, warning from 0.75, critical from 0.9.
[[nodiscard]] Tone fullnessTone(double fraction);
/// The map row's badge: how many nodes are marked, empty when none.
[[nodiscard]] QString mapBadge(qint64 marked);
/// The cleanup row's badge: the size of the selection, empty when nothing is selected.
[[nodiscard]] QString cleanBadge(qint64 selected);
/// The share as a whole percentage, "42 %"-style rounding: 0.425 gives 43.
[[nodiscard]] int percent(double fraction);

} // namespace nubo::ResultTexts
