#include "models/menubar/MenuBarTexts.h"

#include "core/format/Bytes.h"

#include <algorithm>
#include <cmath>

namespace nubo::MenuBarTexts {

double memoryShare(qint64 used, qint64 total)
{
    return double(std::max<qint64>(used, 0)) / double(std::max<qint64>(total, 1));
}

bool isCritical(double value)
{
    return value > 0.9;
}

QString percent(double value)
{
    // A memory total the system did not give makes the quotient the used bytes themselves; the
    // figure must still be a number, never an overflowed one.
    if (!std::isfinite(value))
        return QStringLiteral("0 %");
    const double hundredths = std::clamp(value * 100.0, -1e15, 1e15);
    return QString::number(std::llround(hundredths)) + QStringLiteral(" %");
}

QString available(qint64 bytes)
{
    return Bytes::string(bytes) + QStringLiteral(" disponibles");
}

QString cleanupTitle(bool hasScanned, qint64 safeSize)
{
    if (!hasScanned)
        return QStringLiteral("Analizar y limpiar…");
    return QStringLiteral("Limpiar ") + Bytes::string(safeSize);
}

QString figure(bool byMemory, double cpu, qint64 memory)
{
    if (byMemory)
        return Bytes::string(memory);
    return QString::asprintf("%.0f %%", std::isfinite(cpu) ? cpu : 0.0);
}

QString forceQuitTitle(const QString& name)
{
    return QStringLiteral("¿Forzar la salida de ") + (name.isEmpty() ? QStringLiteral("la app") : name) +
           QStringLiteral("?");
}

QString forceQuitMessage()
{
    return QStringLiteral("Se perderán los cambios sin guardar.");
}

} // namespace nubo::MenuBarTexts
