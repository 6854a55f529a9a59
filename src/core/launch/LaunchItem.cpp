#include "core/launch/LaunchItem.h"

namespace nubo {

QString LaunchItem::scopeLabel(Scope scope)
{
    switch (scope) {
    case Scope::user:
        return QStringLiteral("Tu usuario");
    case Scope::agent:
        return QStringLiteral("Todos los usuarios");
    case Scope::daemon:
        return QStringLiteral("Sistema");
    }
    return {};
}

size_t qHash(const LaunchItem& item, size_t seed)
{
    return qHashMulti(seed, item.url, item.label, item.program, int(item.scope), item.isEnabled,
                      item.isLoaded, item.name, item.appURL.value_or(QString()), item.appURL.has_value());
}

} // namespace nubo
