#pragma once

#include <QString>

namespace nubo::MenuBarTexts {

/// The memory meter's value: used over total, where a total below 1 counts as 1 so the quotient
/// always exists. Not clamped: the bar clamps what it draws, the percentage tells the truth.
[[nodiscard]] double memoryShare(qint64 used, qint64 total);
/// A meter turns red only above 90 %; exactly 90 % is still normal.
[[nodiscard]] bool isCritical(double value);
/// The meter's figure: the value as a whole percentage, "42 %".
[[nodiscard]] QString percent(double value);
/// "<available> disponibles".
[[nodiscard]] QString available(qint64 bytes);
/// The cleanup row: "Limpiar <safe size>" once the cleanup has been scanned, else
/// "Analizar y limpiar…".
[[nodiscard]] QString cleanupTitle(bool hasScanned, qint64 safeSize);
/// One app's figure in the current order: its processor share as "12 %", or its memory.
[[nodiscard]] QString figure(bool byMemory, double cpu, qint64 memory);
/// The force-quit question: "¿Forzar la salida de <name>?", "la app" when the name is empty.
[[nodiscard]] QString forceQuitTitle(const QString& name);
[[nodiscard]] QString forceQuitMessage();

} // namespace nubo::MenuBarTexts
