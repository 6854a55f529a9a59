#include "models/apps/AppsTexts.h"

#include "core/format/Bytes.h"
#include "models/text/Counts.h"

#include <QHash>
#include <QLocale>

namespace nubo::AppsTexts {

namespace {

struct FolderLook
{
    const char* label;
    const char* symbol;
};

// The Library folders a leftover can be found in, by the name the leftover search gives them.
const QHash<QString, FolderLook>& folderLooks()
{
    static const QHash<QString, FolderLook> looks{
        {QStringLiteral("Application Support"), {"Datos de la app", "folder.fill"}},
        {QStringLiteral("Caches"), {"Cachés", "internaldrive.fill"}},
        {QStringLiteral("Preferences"), {"Preferencias", "gearshape.fill"}},
        {QStringLiteral("Containers"), {"Contenedor", "shippingbox.fill"}},
        {QStringLiteral("Group Containers"), {"Contenedor compartido", "shippingbox.fill"}},
        {QStringLiteral("Saved Application State"), {"Estado de ventanas", "doc.text"}},
        {QStringLiteral("HTTPStorages"), {"Datos web", "globe"}},
        {QStringLiteral("Cookies"), {"Datos web", "globe"}},
        {QStringLiteral("Logs"), {"Registros", "doc.text"}},
        {QStringLiteral("LaunchAgents"), {"Arranque automático", "bolt.fill"}},
        {QStringLiteral("PrivilegedHelperTools"), {"Herramienta auxiliar", "gearshape.fill"}},
        {QStringLiteral("Application Scripts"), {"Scripts", "doc.text"}},
    };
    return looks;
}

} // namespace

QString headerLine(bool loading, qint64 count)
{
    if (loading)
        return QStringLiteral("Buscando…");
    return Counts::number(count) + QStringLiteral(" instaladas");
}

QString sortTitle(const QString& sortLabel)
{
    return QStringLiteral("Ordenar por ") + sortLabel;
}

QString lastUsedLine(const std::optional<QDateTime>& lastUsed)
{
    if (!lastUsed || !lastUsed->isValid())
        return {};
    const QLocale spanish(QLocale::Spanish, QLocale::Spain);
    // The short month names of the locale may end in a dot ("mar."); a date reads better without.
    QString day = spanish.toString(lastUsed->toLocalTime().date(), QStringLiteral("d MMM yyyy"));
    day.remove(QLatin1Char('.'));
    return QStringLiteral("Usada ") + day;
}

QString versionLine(const std::optional<QString>& version)
{
    if (!version || version->trimmed().isEmpty())
        return {};
    return QStringLiteral("Versión ") + *version;
}

QString removalLabel(const QString& itemName, bool isBundle)
{
    if (isBundle)
        return QStringLiteral("Aplicación");
    const auto look = folderLooks().constFind(itemName);
    return look == folderLooks().cend() ? itemName : QString::fromUtf8(look->label);
}

QString removalSymbol(const QString& itemName, bool isBundle)
{
    if (isBundle)
        return QStringLiteral("app.fill");
    if (itemName == QLatin1String("WebKit"))
        return QStringLiteral("globe");
    if (itemName == QLatin1String("LaunchDaemons"))
        return QStringLiteral("bolt.fill");
    const auto look = folderLooks().constFind(itemName);
    return look == folderLooks().cend() ? QStringLiteral("folder.fill") : QString::fromLatin1(look->symbol);
}

QString uninstallLabel(qint64 removalSize)
{
    return QStringLiteral("Desinstalar · ") + Bytes::string(removalSize);
}

QString initial(const QString& name)
{
    for (const QChar c : name) {
        if (c.isLetterOrNumber())
            return QString(c).toUpper();
    }
    return QStringLiteral("?");
}

double tileHue(const QString& name)
{
    // FNV-1a over the UTF-16 units: Qt's own hash is seeded per process, and a colour that
    // changed at every start would look like a different application.
    quint32 hash = 2166136261u;
    for (const QChar c : name) {
        hash ^= c.unicode();
        hash *= 16777619u;
    }
    return double(hash % 360u) / 360.0;
}

} // namespace nubo::AppsTexts
