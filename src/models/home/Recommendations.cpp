#include "models/home/Recommendations.h"

#include "core/format/Bytes.h"
#include "models/home/HomeTexts.h"

#include <algorithm>

namespace nubo {

QVariantMap Recommendation::toMap() const
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("symbol"), symbol},
            {QStringLiteral("title"), title},
            {QStringLiteral("detail"), detail},
            {QStringLiteral("size"), size},
            {QStringLiteral("sizeText"), size > 0 && !sizeInDetail ? Bytes::string(size) : QString()},
            {QStringLiteral("color"), color},
            {QStringLiteral("action"), action}};
}

namespace Recommendations {

QList<Recommendation> build(const Inputs& inputs)
{
    const QString openMap = QStringLiteral("Abrir mapa");
    const QString review = QStringLiteral("Revisar");
    QList<Recommendation> urgent;
    QList<Recommendation> rest;

    if (HomeTexts::isAlmostFull(inputs.diskFraction)) {
        urgent.append({QStringLiteral("disk"), QStringLiteral("exclamationmark.triangle.fill"),
                       QStringLiteral("El disco está casi lleno"),
                       QStringLiteral("Con menos del 10 % libre macOS va más lento y no puede actualizarse. "
                                      "Explora el mapa para ver qué ocupa más."),
                       0, QStringLiteral("red"), openMap, Recommendation::Action::OpenMap, {}});
    }
    for (const Inputs::Category& category : inputs.categories) {
        if (!HomeTexts::isWorthReviewing(category.size))
            continue;
        rest.append({QStringLiteral("category:") + category.id, category.symbol, category.title,
                     HomeTexts::categoryDetail(category.count, category.size), category.size, category.color,
                     review, Recommendation::Action::RevealCategory, category.id, true});
    }
    if (!inputs.unusedApps.isEmpty()) {
        rest.append({QStringLiteral("unused"), QStringLiteral("square.stack.3d.up.slash.fill"),
                     HomeTexts::unusedTitle(inputs.unusedApps.size()), HomeTexts::unusedDetail(inputs.unusedApps),
                     inputs.unusedSizesLoaded ? inputs.unusedSize : 0, QStringLiteral("purple"), review,
                     Recommendation::Action::ShowUnusedApps, {}});
    }
    if (!inputs.mapScanned) {
        rest.append({QStringLiteral("map"), QStringLiteral("circle.hexagongrid.fill"),
                     QStringLiteral("Explora tu carpeta personal"),
                     QStringLiteral("Mira en burbujas qué carpetas ocupan más y entra en ellas para encontrar "
                                    "archivos olvidados."),
                     0, QStringLiteral("blue"), openMap, Recommendation::Action::OpenMap, {}});
    }

    std::ranges::stable_sort(rest, std::ranges::greater{}, &Recommendation::size);
    return urgent + rest;
}

} // namespace Recommendations
} // namespace nubo
