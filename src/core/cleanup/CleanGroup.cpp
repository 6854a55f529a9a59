#include "core/cleanup/CleanGroup.h"

namespace nubo::CleanGroups {

const QList<CleanGroup>& all()
{
    static const QList<CleanGroup> groups{CleanGroup::system, CleanGroup::developer, CleanGroup::personal};
    return groups;
}

QString title(CleanGroup group)
{
    switch (group) {
    case CleanGroup::system:
        return QStringLiteral("Sistema");
    case CleanGroup::developer:
        return QStringLiteral("Desarrollo");
    case CleanGroup::personal:
        return QStringLiteral("Tus archivos");
    }
    return {};
}

std::optional<CleanGroup> fromTitle(const QString& text)
{
    for (CleanGroup group : all()) {
        if (title(group) == text)
            return group;
    }
    return std::nullopt;
}

} // namespace nubo::CleanGroups
