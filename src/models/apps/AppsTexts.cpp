#include "models/apps/AppsTexts.h"

#include "core/files/Location.h"
#include "core/format/Bytes.h"
#include "models/text/Counts.h"
#include "models/text/IconSource.h"

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
        // A Linux home's folders.
        {QStringLiteral(".config"), {"Configuración", "gearshape.fill"}},
        {QStringLiteral(".local/share"), {"Datos de la app", "folder.fill"}},
        {QStringLiteral(".cache"), {"Cachés", "internaldrive.fill"}},
        {QStringLiteral(".var/app"), {"Datos de Flatpak", "shippingbox.fill"}},
        {QStringLiteral("snap"), {"Datos de Snap", "shippingbox.fill"}},
        {QStringLiteral("applications"), {"Lanzador propio", "doc.text"}},
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

QString removalDetail(const InstalledApp& app, const QString& home)
{
    switch (app.origin) {
    case AppOrigin::Flatpak:
        return QStringLiteral("flatpak uninstall ") + app.package;
    case AppOrigin::Snap:
        return QStringLiteral("snap remove ") + app.package;
    case AppOrigin::Package:
        return QStringLiteral("apt-get remove ") + app.package;
    case AppOrigin::AppImage:
    case AppOrigin::Own:
        return Location::tildePath(app.payload.isEmpty() ? app.url : app.payload, home);
    case AppOrigin::Bundle:
    case AppOrigin::Unmanaged:
        break;
    }
    return Location::tildePath(app.url, home);
}

QString originTag(const InstalledApp& app)
{
    switch (app.origin) {
    case AppOrigin::Bundle:
        return app.isStore ? QStringLiteral("App Store") : QString();
    case AppOrigin::Flatpak:
        return QStringLiteral("Flatpak");
    case AppOrigin::Snap:
        return QStringLiteral("Snap");
    case AppOrigin::AppImage:
        return QStringLiteral("AppImage");
    case AppOrigin::Package:
        return QStringLiteral("Paquete del sistema");
    case AppOrigin::Own:
        return QStringLiteral("Instalada por ti");
    case AppOrigin::Unmanaged:
        break;
    }
    return {};
}

QString removalNote(HostSystem system)
{
    return system == HostSystem::Mac
               ? QStringLiteral("Incluye la app y los archivos que ha dejado en la Biblioteca. Desmarca lo que "
                                "quieras conservar.")
               : QStringLiteral("Incluye la app y los archivos que ha dejado en tu carpeta personal. Desmarca lo "
                                "que quieras conservar.");
}

QString emptyNote(HostSystem system)
{
    return system == HostSystem::Mac
               ? QStringLiteral("Nubo encuentra la app y todo lo que deja repartido por el Mac: datos, cachés, "
                                "preferencias, contenedores y agentes de inicio.")
               : QStringLiteral("Nubo encuentra la app y todo lo que deja en tu carpeta personal: configuración, "
                                "datos y cachés. Las apps de Flatpak, Snap y del sistema se quitan con su propio "
                                "instalador.");
}

QString refusal(const AppRemoval& removal, const InstalledApp& app)
{
    switch (removal.refusal) {
    case AppRemoval::Refusal::None:
        return {};
    case AppRemoval::Refusal::NotPackaged:
        return QStringLiteral("Nubo no la desinstala: no la instaló ningún gestor de paquetes que conozca.");
    case AppRemoval::Refusal::TakesOthers: {
        // A long list is cut short: the first few name the kind of thing that would go.
        constexpr qsizetype kNamed = 4;
        QStringList named = removal.others.mid(0, removal.others.size() > kNamed + 1 ? kNamed : kNamed + 1);
        if (named.size() < removal.others.size())
            named << Counts::number(removal.others.size() - named.size()) + QStringLiteral(" más");
        return QStringLiteral("Nubo no la desinstala: quitar el paquete %1 quitaría también %2.")
            .arg(app.package, QLocale(QLocale::Spanish, QLocale::Spain).createSeparatedList(named));
    }
    case AppRemoval::Refusal::PackagingSilent:
        return QStringLiteral("Nubo no la desinstala: el gestor de paquetes no ha dicho qué se quitaría con ella.");
    case AppRemoval::Refusal::ToolMissing:
        return QStringLiteral("Nubo no la desinstala: falta %1 en este equipo.").arg(removal.others.value(0));
    }
    return {};
}

QString uninstallLabel(std::optional<qint64> removalSize)
{
    if (!removalSize)
        return QStringLiteral("Desinstalar");
    return QStringLiteral("Desinstalar · ") + Bytes::string(*removalSize);
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

QVariantMap badge(const QString& name, const QString& path)
{
    return {{QStringLiteral("iconSource"), IconSource::of(path)},
            {QStringLiteral("initial"), initial(name)},
            {QStringLiteral("hue"), tileHue(name)}};
}

} // namespace nubo::AppsTexts
