#pragma once

#include <QString>

namespace nubo::CleanTexts {

/// The cleanup screen's texts, built from the model's figures so the views only lay them out.
/// Every size goes through the one byte formatter; counts through the shared item count.

/// Under the title: "Analizando…" while a scan runs, otherwise "<size> encontrados".
[[nodiscard]] QString overviewLine(bool scanning, qint64 totalFound);
/// "Buscando espacio…" while a scan runs, otherwise "Puedes liberar".
[[nodiscard]] QString summaryHeading(bool scanning);
/// "13 de 18 zonas revisadas": how many of the catalogue's categories have finished. A loading
/// count beyond the catalogue (which a consistent model never has) reads as none finished.
[[nodiscard]] QString progressLine(int categoryCount, int loadingCount);
/// "1 elemento seleccionado", otherwise "<n> elementos seleccionados" (also for 0).
[[nodiscard]] QString selectionLine(qint64 selectedCount);
/// The help of a category's check circle: "No limpiar" when every item is ticked (pressing it
/// unticks them), "Limpiar todo" otherwise.
[[nodiscard]] QString categoryHelp(bool allSelected);
/// The right side of a category row once it has finished: "Nada que limpiar" without items,
/// otherwise the item count ("1 elemento", "<n> elementos"). Empty while it is still loading.
[[nodiscard]] QString categoryCount(bool loading, qint64 count, bool cleaning = false);
/// The clean button: "Limpiar", or "Limpiando…" while a clean runs.
[[nodiscard]] QString cleanLabel(bool cleaning);
/// The detail page's count line: "<selected> de <count> seleccionados".
[[nodiscard]] QString detailCountLine(qint64 selectedCount, qint64 count);
/// The detail page's bulk button: "Desmarcar todo" when every item is ticked, else "Marcar todo".
[[nodiscard]] QString toggleAllLabel(bool allSelected);
/// The symbol of an item's icon when no application icon stands for it: a folder, a file, or a
/// terminal for an item that runs a command instead of deleting a path.
[[nodiscard]] QString itemSymbol(bool isCommand, bool isFolder);

/// A file or folder name (or a path) as one line of a list: a line break shows as "↵", other
/// control characters and the stand-ins for bytes that are not UTF-8 as "�". Only for showing:
/// the item keeps its real name and path, which every action uses.
[[nodiscard]] QString oneLine(const QString& text);

} // namespace nubo::CleanTexts
