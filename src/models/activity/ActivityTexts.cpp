#include "models/activity/ActivityTexts.h"

#include "core/format/Bytes.h"

#include <algorithm>
#include <cmath>

namespace nubo {

namespace {

// Samples of a process that went away mid-interval can leave odd figures; a share is never shown
// as "nan %" or below zero.
double shown(double percent)
{
    return std::isfinite(percent) && percent > 0 ? percent : 0.0;
}

} // namespace

ActivityTexts::ActivityTexts(QObject* parent) : QObject(parent) {}

QString ActivityTexts::totalCpu(double percent)
{
    return QString::asprintf("%.0f %%", shown(percent));
}

QString ActivityTexts::appCpu(double percent)
{
    return QString::asprintf("%.1f %%", shown(percent));
}

QString ActivityTexts::memory(qint64 used, qint64 total)
{
    return Bytes::string(used) + QStringLiteral(" de ") + Bytes::string(total);
}

double ActivityTexts::memoryFraction(qint64 used, qint64 total)
{
    if (total <= 0 || used <= 0)
        return 0.0;
    return std::min(1.0, double(used) / double(total));
}

QString ActivityTexts::memoryTone(qint64 used, qint64 total)
{
    const double fraction = memoryFraction(used, total);
    if (fraction > 0.90)
        return QStringLiteral("critical");
    if (fraction > 0.75)
        return QStringLiteral("warning");
    return QStringLiteral("accent");
}

QString ActivityTexts::hideAction(bool hidden)
{
    return hidden ? QStringLiteral("Mostrar") : QStringLiteral("Ocultar");
}

QString ActivityTexts::hideSymbol(bool hidden)
{
    return hidden ? QStringLiteral("eye") : QStringLiteral("eye.slash");
}

QString ActivityTexts::forceQuitTitle(const QString& name)
{
    const QString trimmed = name.trimmed();
    return QStringLiteral("¿Forzar la salida de ") + (trimmed.isEmpty() ? QStringLiteral("la app") : name) +
           QLatin1Char('?');
}

QString ActivityTexts::forceQuitMessage()
{
    return QStringLiteral("Se perderán los cambios sin guardar.");
}

QString ActivityTexts::bytesText(qint64 bytes) const
{
    return Bytes::string(bytes);
}

} // namespace nubo
