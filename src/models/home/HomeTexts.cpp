#include "models/home/HomeTexts.h"

#include "core/format/Bytes.h"
#include "models/text/Counts.h"

namespace nubo::HomeTexts {

namespace {
// 50 MiB: below this a category is not worth a row of its own on the summary.
constexpr qint64 kReviewThreshold = 52'428'800;
constexpr qsizetype kNamedUnusedApps = 3;
} // namespace

QString introduction()
{
    return QStringLiteral("Nubo revisa cachés, restos de apps, datos de desarrollo y archivos grandes. "
                          "No borra nada sin preguntarte.");
}

QString headline(bool analyzing, qint64 found)
{
    if (analyzing)
        return QStringLiteral("Analizando…");
    if (found < 1)
        return QStringLiteral("Todo limpio");
    return Bytes::string(found) + QStringLiteral(" que puedes recuperar");
}

QString diskLine(qint64 available, qint64 total)
{
    return Bytes::string(available) + QStringLiteral(" disponibles") + QStringLiteral(" de ") +
           Bytes::string(total);
}

QString zonesLine(qint64 examined)
{
    return Counts::number(examined) + QStringLiteral(" zonas revisadas");
}

QString safeShare(qint64 safeSize)
{
    return Bytes::string(safeSize) +
           QStringLiteral(" se pueden borrar sin riesgo. El resto, mejor que lo revises.");
}

QString safeExplanation()
{
    return QStringLiteral(
        "Cachés, registros, temporales y datos de compilación: todo se regenera solo cuando hace falta.");
}

QString safeButton(qint64 safeSize)
{
    if (safeSize < 1)
        return QStringLiteral("Limpiar");
    return QStringLiteral("Limpiar ") + Bytes::string(safeSize);
}

QString nothingToReview(HostSystem system)
{
    return system == HostSystem::Mac ? QStringLiteral("Nada más que revisar. Tu Mac está en forma.")
                                     : QStringLiteral("Nada más que revisar. Tu equipo está en forma.");
}

QString footer(HostSystem system)
{
    return system == HostSystem::Mac
               ? QStringLiteral("Nubo nunca toca el sistema, iCloud Drive, el Llavero, Mail, Mensajes ni la "
                                "fototeca. Todo lo demás se borra sólo cuando lo confirmas.")
               : QStringLiteral("Nubo nunca toca el sistema, tus claves, el correo ni la fototeca. Todo lo "
                                "demás se borra sólo cuando lo confirmas.");
}

QString categoryDetail(qint64 count, qint64 size)
{
    return Counts::items(count) + QStringLiteral(" · ") + Bytes::string(size);
}

QString unusedTitle(qint64 count)
{
    if (count == 1)
        return QStringLiteral("1 app sin usar");
    return Counts::number(count) + QStringLiteral(" apps sin usar");
}

QString unusedDetail(const QStringList& names)
{
    return QStringLiteral("Sin abrir en más de 3 meses: ") + names.mid(0, kNamedUnusedApps).join(QStringLiteral(", "));
}

bool isWorthReviewing(qint64 size)
{
    return size >= kReviewThreshold;
}

bool isAlmostFull(double fraction)
{
    return fraction > 0.9;
}

} // namespace nubo::HomeTexts
