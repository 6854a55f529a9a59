#include "models/performance/PerformanceTexts.h"

#include "models/text/Counts.h"

#include <QStringList>

#include <algorithm>

namespace nubo {

PerformanceTexts::PerformanceTexts(QObject* parent) : QObject(parent) {}

QString PerformanceTexts::activeCount(qint64 enabled)
{
    return Counts::number(std::max<qint64>(enabled, 0)) + QStringLiteral(" ítems de inicio activos");
}

QString PerformanceTexts::details(const LaunchItem& item)
{
    QStringList parts{LaunchItem::scopeLabel(item.scope)};
    if (!item.label.isEmpty() && item.label != item.name) {
        parts << item.label;
    } else if (!item.program.isEmpty()) {
        // A trailing slash would leave nothing after the last one; the whole path is better then.
        const QString file = item.program.section(QLatin1Char('/'), -1);
        parts << (file.isEmpty() ? item.program : file);
    }
    if (!item.isEnabled)
        parts << QStringLiteral("Desactivado");
    // A label or program read from a property list may hold a line break; the row has one line.
    return parts.join(QStringLiteral(" · ")).simplified();
}

QString PerformanceTexts::toggleAction(bool enabled)
{
    return enabled ? QStringLiteral("Desactivar") : QStringLiteral("Activar");
}

QString PerformanceTexts::removeTitle(const QString& name)
{
    return QStringLiteral("¿Eliminar «") + name + QStringLiteral("»?");
}

QString PerformanceTexts::adminNote() const
{
    return QStringLiteral("Las tareas marcadas con \U0001F512 piden tu contraseña de administrador.");
}

QString PerformanceTexts::removeMessage()
{
    return QStringLiteral("Se para el servicio y se borra su archivo de configuración. Si la app lo "
                          "necesita, puede volver a crearlo. Para no tocar nada, mejor desactívalo.");
}

QString PerformanceTexts::snapshots(int count)
{
    if (count <= 0)
        return QStringLiteral("No hay instantáneas locales ahora mismo.");
    return Counts::number(count) + (count == 1 ? QStringLiteral(" instantánea") : QStringLiteral(" instantáneas")) +
           QStringLiteral(" en el disco. ");
}

QString PerformanceTexts::outcomeSymbol(bool ok)
{
    return ok ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("xmark.circle.fill");
}

} // namespace nubo
