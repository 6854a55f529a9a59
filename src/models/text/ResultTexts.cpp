#include "models/text/ResultTexts.h"

#include "core/format/Bytes.h"
#include "models/text/Counts.h"

#include <cmath>

namespace nubo::ResultTexts {

QString toastHeadline(qint64 freed)
{
    if (freed < 1)
        return QStringLiteral("Nada que liberar");
    return Bytes::string(freed) + QStringLiteral(" liberados");
}

QString toastFailures(qint64 failures)
{
    if (failures < 1)
        return {};
    if (failures == 1)
        return QStringLiteral("1 elemento no se pudo borrar");
    return Counts::number(failures) + QStringLiteral(" elementos no se pudieron borrar");
}

QString toastSymbol(qint64 failures)
{
    return failures == 0 ? QStringLiteral("checkmark.circle.fill")
                         : QStringLiteral("exclamationmark.triangle.fill");
}

Tone toastTone(qint64 failures)
{
    return failures == 0 ? Tone::Success : Tone::Warning;
}

QString confirmationTitle(const QString& verb, qint64 count, qint64 size)
{
    return QStringLiteral("¿") + verb + QLatin1Char(' ') + Counts::items(count) + QStringLiteral(" (") +
           Bytes::string(size) + QStringLiteral(")?");
}

QString confirmationMessage()
{
    return QStringLiteral(
        "Se borrará para siempre, sin pasar por la Papelera. Esta acción no se puede deshacer.");
}

QString diskLine(qint64 available, qint64 total)
{
    return Bytes::string(available) + QStringLiteral(" disponibles de ") + Bytes::string(total);
}

QString diskName(const QString& volumeName)
{
    return volumeName.isEmpty() ? QStringLiteral("Disco de inicio") : volumeName;
}

QString freedToday(qint64 freed)
{
    if (freed < 1)
        return {};
    return QStringLiteral("Liberado hoy: ") + Bytes::string(freed);
}

Tone fullnessTone(double fraction)
{
    if (fraction >= 0.9)
        return Tone::Critical;
    if (fraction >= 0.75)
        return Tone::Warning;
    return Tone::Accent;
}

QString mapBadge(qint64 marked)
{
    return marked > 0 ? Counts::number(marked) : QString();
}

QString cleanBadge(qint64 selected)
{
    return selected > 0 ? Bytes::string(selected) : QString();
}

int percent(double fraction)
{
    if (!std::isfinite(fraction))
        return 0;
    return static_cast<int>(std::lround(fraction * 100.0));
}

} // namespace nubo::ResultTexts
