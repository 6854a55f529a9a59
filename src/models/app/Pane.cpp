#include "models/app/Pane.h"

namespace nubo::Panes {

namespace {

struct PaneInfo
{
    const char* id;
    const char* title;
    const char* symbol;
};

constexpr std::array<PaneInfo, 6> kPanes{{
    {"home", "Resumen", "sparkles"},
    {"map", "Mapa", "circle.hexagongrid.fill"},
    {"clean", "Limpieza", "bubbles.and.sparkles.fill"},
    {"apps", "Apps", "square.stack.3d.up.fill"},
    {"activity", "Actividad", "gauge.with.dots.needle.67percent"},
    {"performance", "Rendimiento", "speedometer"},
}};

const PaneInfo& info(Pane pane)
{
    return kPanes[static_cast<size_t>(pane)];
}

} // namespace

QString id(Pane pane)
{
    return QString::fromUtf8(info(pane).id);
}

std::optional<Pane> fromId(const QString& id)
{
    for (Pane pane : all) {
        if (id == QLatin1String(info(pane).id))
            return pane;
    }
    return std::nullopt;
}

QString title(Pane pane)
{
    return QString::fromUtf8(info(pane).title);
}

QString symbol(Pane pane)
{
    return QString::fromUtf8(info(pane).symbol);
}

} // namespace nubo::Panes
