#include "core/cleanup/NamedColor.h"

namespace nubo::NamedColors {

QString name(NamedColor color)
{
    switch (color) {
    case NamedColor::teal: return QStringLiteral("teal");
    case NamedColor::gray: return QStringLiteral("gray");
    case NamedColor::orange: return QStringLiteral("orange");
    case NamedColor::red: return QStringLiteral("red");
    case NamedColor::blue: return QStringLiteral("blue");
    case NamedColor::indigo: return QStringLiteral("indigo");
    case NamedColor::purple: return QStringLiteral("purple");
    case NamedColor::brown: return QStringLiteral("brown");
    case NamedColor::cyan: return QStringLiteral("cyan");
    case NamedColor::green: return QStringLiteral("green");
    case NamedColor::mint: return QStringLiteral("mint");
    case NamedColor::yellow: return QStringLiteral("yellow");
    case NamedColor::pink: return QStringLiteral("pink");
    }
    return {};
}

} // namespace nubo::NamedColors
