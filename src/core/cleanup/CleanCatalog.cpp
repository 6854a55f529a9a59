#include "core/cleanup/CleanCatalog.h"

#include <algorithm>

namespace nubo {

namespace {

struct Row
{
    const char* id;
    CleanGroup group;
    const char* title;
    const char* subtitle;
    const char* symbol;
    NamedColor color;
    bool selectedByDefault;
    const char* caution; // nullptr: none
};

// The display order inside each group is the order of this table. Every category that is not
// selected by default carries a caution, except downloaded installers: the user put those in
// Downloads on purpose, and their names already say what they are.
constexpr Row kRows[] = {
    {"caches", CleanGroup::system, "Cachés de apps", "Datos temporales que las apps vuelven a generar",
     "internaldrive.fill", NamedColor::teal, true, nullptr},
    {"logs", CleanGroup::system, "Registros e informes", "Logs y reportes de fallos antiguos",
     "doc.text.magnifyingglass", NamedColor::gray, true, nullptr},
    {"temp", CleanGroup::system, "Archivos temporales", "Restos de más de 3 días en carpetas temporales",
     "clock.arrow.circlepath", NamedColor::orange, true, nullptr},
    {"trash", CleanGroup::system, "Papelera", "Lo que ya tiraste pero sigue ocupando sitio", "trash.fill",
     NamedColor::red, true, nullptr},
    {"mail", CleanGroup::system, "Adjuntos de Mail", "Copias descargadas de adjuntos abiertos", "paperclip",
     NamedColor::blue, true, nullptr},
    {"deriveddata", CleanGroup::developer, "Xcode DerivedData", "Compilaciones intermedias e índices",
     "hammer.fill", NamedColor::blue, true, nullptr},
    {"devicesupport", CleanGroup::developer, "Soporte de dispositivos",
     "Símbolos de iOS/watchOS de cada versión que conectaste", "iphone.gen3", NamedColor::indigo, true,
     nullptr},
    {"simulators", CleanGroup::developer, "Simuladores", "Cachés y simuladores que ya no están disponibles",
     "ipad.and.iphone", NamedColor::purple, true, nullptr},
    {"runtimes", CleanGroup::developer, "Runtimes de simulador",
     "Versiones completas de iOS para el simulador (varios GB cada una)", "cpu.fill", NamedColor::purple,
     false, "Xcode volverá a descargarlas si las necesitas."},
    {"packages", CleanGroup::developer, "Cachés de paquetes",
     "Homebrew, npm, pnpm, Yarn, pip, CocoaPods, SwiftPM, Gradle…", "shippingbox.fill", NamedColor::brown,
     true, nullptr},
    {"archives", CleanGroup::developer, "Archivos de Xcode", "Builds archivados para subir a la App Store",
     "archivebox.fill", NamedColor::cyan, false,
     "Contienen los dSYM para leer informes de fallos de versiones publicadas."},
    {"node_modules", CleanGroup::developer, "node_modules inactivos", "Proyectos sin tocar en 30 días",
     "cube.box.fill", NamedColor::green, false, "Se recuperan con npm install."},
    {"docker", CleanGroup::developer, "Docker", "Imágenes, contenedores parados y caché de build",
     "shippingbox.and.arrow.backward.fill", NamedColor::blue, false,
     "Ejecuta docker system prune -a: borra imágenes no usadas por contenedores activos."},
    {"installers", CleanGroup::personal, "Instaladores descargados", ".dmg, .pkg y .xip en Descargas",
     "arrow.down.app.fill", NamedColor::mint, false, nullptr},
    {"olddownloads", CleanGroup::personal, "Descargas antiguas", "Sin abrir ni modificar en 90 días",
     "tray.and.arrow.down.fill", NamedColor::yellow, false, "Revisa la lista: son tus archivos."},
    {"largeold", CleanGroup::personal, "Archivos grandes y antiguos", "Más de 500 MB y sin abrir en 6 meses",
     "doc.badge.clock.fill", NamedColor::indigo, false, "Son tus archivos: revisa uno por uno."},
    {"backups", CleanGroup::personal, "Copias de iPhone/iPad", "Backups locales hechos desde Finder",
     "iphone.and.arrow.forward", NamedColor::pink, false,
     "Si borras una copia no podrás restaurar ese dispositivo desde ella."},
    {"orphans", CleanGroup::personal, "Restos de apps borradas", "Datos de apps que ya no están instaladas",
     "puzzlepiece.extension.fill", NamedColor::orange, false,
     "Detectado por nombre: revisa antes de borrar."},
};

// Linux's rows, in the Mac's order: each with the subtitle that names Linux's things where the
// Mac's names a Mac thing, or null to keep the Mac's. A row that cannot exist there is left out.
struct LinuxRow
{
    const char* id;
    const char* subtitle;
    const char* caution;
};

constexpr LinuxRow kLinuxRows[] = {
    {"caches", nullptr, nullptr},
    {"logs", nullptr, nullptr},
    {"temp", nullptr, nullptr},
    {"trash", nullptr, nullptr},
    {"packages", "pip, npm, pnpm, Yarn, Cargo, Go, Gradle, Maven…", nullptr},
    {"node_modules", nullptr, nullptr},
    {"docker", nullptr, nullptr},
    {"installers", ".deb, .rpm, .AppImage, .run e imágenes de disco en Descargas", nullptr},
    {"olddownloads", nullptr, nullptr},
    {"largeold", nullptr, nullptr},
    {"orphans", "Datos de apps de Flatpak y Snap que ya no están instaladas",
     "Lo que guardaste dentro de esas apps se borra con ellos."},
};

CleanCategory::Scan nothing()
{
    return [] { return QList<CleanItem>(); };
}

} // namespace

CleanCatalog::CleanCatalog(Rules rules, HostSystem system) : m_rules(std::move(rules)), m_system(system) {}

const QList<CleanCategory>& CleanCatalog::rows()
{
    // A function-local static is initialised exactly once even when several scans ask at once.
    static const QList<CleanCategory> table = [] {
        QList<CleanCategory> list;
        list.reserve(std::size(kRows));
        for (const Row& row : kRows) {
            std::optional<QString> caution;
            if (row.caution)
                caution = QString::fromUtf8(row.caution);
            list.append(CleanCategory{QString::fromUtf8(row.id), row.group, QString::fromUtf8(row.title),
                                      QString::fromUtf8(row.subtitle), QString::fromUtf8(row.symbol),
                                      row.color, row.selectedByDefault, std::move(caution), nothing()});
        }
        return list;
    }();
    return table;
}

const QList<CleanCategory>& CleanCatalog::rows(HostSystem system)
{
    if (system == HostSystem::Mac)
        return rows();
    static const QList<CleanCategory> table = [] {
        QList<CleanCategory> list;
        for (const LinuxRow& row : kLinuxRows) {
            const auto mac = std::find_if(rows().begin(), rows().end(), [&row](const CleanCategory& category) {
                return category.id == QLatin1String(row.id);
            });
            CleanCategory category = *mac;
            if (row.subtitle)
                category.subtitle = QString::fromUtf8(row.subtitle);
            if (row.caution)
                category.caution = QString::fromUtf8(row.caution);
            list.append(std::move(category));
        }
        return list;
    }();
    return table;
}

const QList<CleanCategory>& CleanCatalog::all() const
{
    std::call_once(m_bound, [this] {
        QList<CleanCategory> bound = rows(m_system);
        for (CleanCategory& category : bound) {
            CleanCategory::Scan scan = m_rules ? m_rules(category.id) : CleanCategory::Scan();
            category.scan = scan ? std::move(scan) : nothing();
        }
        m_all = std::move(bound);
    });
    return m_all;
}

} // namespace nubo
