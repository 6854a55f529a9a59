#include "models/clean/CleanTexts.h"

#include "core/format/Bytes.h"
#include "models/text/Counts.h"

namespace nubo::CleanTexts {

QString overviewLine(bool scanning, qint64 totalFound)
{
    if (scanning)
        return QStringLiteral("Analizando…");
    return Bytes::string(totalFound) + QStringLiteral(" encontrados");
}

QString summaryHeading(bool scanning)
{
    return scanning ? QStringLiteral("Buscando espacio…") : QStringLiteral("Puedes liberar");
}

QString progressLine(int categoryCount, int loadingCount)
{
    const int total = qMax(0, categoryCount);
    const int finished = qBound(0, total - loadingCount, total);
    return Counts::number(finished) + QStringLiteral(" de ") + Counts::number(total) +
           QStringLiteral(" zonas revisadas");
}

QString selectionLine(qint64 selectedCount)
{
    if (selectedCount == 1)
        return QStringLiteral("1 elemento seleccionado");
    return Counts::number(selectedCount) + QStringLiteral(" elementos seleccionados");
}

QString categoryHelp(bool allSelected)
{
    return allSelected ? QStringLiteral("No limpiar") : QStringLiteral("Limpiar todo");
}

QString categoryCount(bool loading, qint64 count, bool cleaning)
{
    if (cleaning)
        return QStringLiteral("Limpiando…");
    if (loading)
        return {};
    if (count == 0)
        return QStringLiteral("Nada que limpiar");
    return Counts::items(count);
}

QString cleanLabel(bool cleaning)
{
    return cleaning ? QStringLiteral("Limpiando…") : QStringLiteral("Limpiar");
}

QString detailCountLine(qint64 selectedCount, qint64 count)
{
    return Counts::number(selectedCount) + QStringLiteral(" de ") + Counts::number(count) +
           QStringLiteral(" seleccionados");
}

QString toggleAllLabel(bool allSelected)
{
    return allSelected ? QStringLiteral("Desmarcar todo") : QStringLiteral("Marcar todo");
}

QString itemSymbol(bool isCommand, bool isFolder)
{
    if (isCommand)
        return QStringLiteral("terminal.fill");
    return isFolder ? QStringLiteral("folder.fill") : QStringLiteral("doc.fill");
}

QString oneLine(const QString& text)
{
    QString shown;
    shown.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            shown += QChar(0x21B5);
        } else if (c == QLatin1Char('\t')) {
            shown += QLatin1Char(' ');
        } else if (c.unicode() < 0x20 || c.unicode() == 0x7F) {
            shown += QChar::ReplacementCharacter;
        } else if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            shown += c;
            shown += text.at(++i);
        } else if (c.isSurrogate()) {
            shown += QChar::ReplacementCharacter;
        } else {
            shown += c;
        }
    }
    return shown;
}

} // namespace nubo::CleanTexts
