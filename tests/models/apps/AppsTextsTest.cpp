#include "models/apps/AppsTexts.h"

#include <QLocale>
#include <QTimeZone>
#include <gtest/gtest.h>

using namespace nubo;

TEST(AppsTexts, EveryWellKnownLibraryFolderHasItsSpanishLabel)
{
    const QList<std::pair<QString, QString>> table{
        {QStringLiteral("Application Support"), QStringLiteral("Datos de la app")},
        {QStringLiteral("Caches"), QStringLiteral("Cachés")},
        {QStringLiteral("Preferences"), QStringLiteral("Preferencias")},
        {QStringLiteral("Containers"), QStringLiteral("Contenedor")},
        {QStringLiteral("Group Containers"), QStringLiteral("Contenedor compartido")},
        {QStringLiteral("Saved Application State"), QStringLiteral("Estado de ventanas")},
        {QStringLiteral("HTTPStorages"), QStringLiteral("Datos web")},
        {QStringLiteral("Cookies"), QStringLiteral("Datos web")},
        {QStringLiteral("Logs"), QStringLiteral("Registros")},
        {QStringLiteral("LaunchAgents"), QStringLiteral("Arranque automático")},
        {QStringLiteral("PrivilegedHelperTools"), QStringLiteral("Herramienta auxiliar")},
        {QStringLiteral("Application Scripts"), QStringLiteral("Scripts")},
    };
    for (const auto& [name, label] : table) {
        EXPECT_EQ(AppsTexts::removalLabel(name, false), label) << name.toStdString();
        EXPECT_NE(AppsTexts::removalSymbol(name, false), QStringLiteral("app.fill")) << name.toStdString();
    }
}

TEST(AppsTexts, TheBundleIsAlwaysTheApplicationAndOtherNamesStayAsTheyAre)
{
    // An application called "Caches" is still the application, not a cache folder.
    EXPECT_EQ(AppsTexts::removalLabel(QStringLiteral("Caches"), true), QStringLiteral("Aplicación"));
    EXPECT_EQ(AppsTexts::removalSymbol(QStringLiteral("Caches"), true), QStringLiteral("app.fill"));
    // Folders outside the table, and names that only look alike, are shown as found.
    for (const QString& name :
         {QStringLiteral("WebKit"), QStringLiteral("LaunchDaemons"), QStringLiteral("caches"),
          QStringLiteral("Caches "), QString(), QStringLiteral("-rf \"x\"\\\n")}) {
        EXPECT_EQ(AppsTexts::removalLabel(name, false), name);
        EXPECT_FALSE(AppsTexts::removalSymbol(name, false).isEmpty());
    }
    EXPECT_EQ(AppsTexts::removalSymbol(QStringLiteral("WebKit"), false), QStringLiteral("globe"));
    EXPECT_EQ(AppsTexts::removalSymbol(QStringLiteral("Unheard Of"), false), QStringLiteral("folder.fill"));
}

TEST(AppsTexts, TheLastUseIsTheDayInSpanishAndNothingWhenUnknown)
{
    // Noon UTC is the same day in every time zone a test machine may have.
    const QDateTime march(QDate(2026, 3, 3), QTime(12, 0), QTimeZone::utc());
    const QString line = AppsTexts::lastUsedLine(march);
    EXPECT_TRUE(line.startsWith(QStringLiteral("Usada 3 mar"))) << line.toStdString();
    EXPECT_TRUE(line.endsWith(QStringLiteral(" 2026"))) << line.toStdString();
    EXPECT_FALSE(line.contains(QLatin1Char('.')));
    EXPECT_TRUE(AppsTexts::lastUsedLine(QDateTime(QDate(2025, 12, 24), QTime(12, 0), QTimeZone::utc()))
                    .startsWith(QStringLiteral("Usada 24 dic")));
    EXPECT_TRUE(AppsTexts::lastUsedLine(std::nullopt).isEmpty());
    EXPECT_TRUE(AppsTexts::lastUsedLine(QDateTime()).isEmpty());
}

TEST(AppsTexts, HeaderSortVersionAndUninstallLines)
{
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    EXPECT_EQ(AppsTexts::headerLine(true, 12), QStringLiteral("Buscando…"));
    EXPECT_EQ(AppsTexts::headerLine(false, 12), QStringLiteral("12 instaladas"));
    EXPECT_EQ(AppsTexts::headerLine(false, 0), QStringLiteral("0 instaladas"));
    EXPECT_EQ(AppsTexts::sortTitle(QStringLiteral("Último uso")), QStringLiteral("Ordenar por Último uso"));
    EXPECT_EQ(AppsTexts::versionLine(QStringLiteral("2.4.1")), QStringLiteral("Versión 2.4.1"));
    EXPECT_TRUE(AppsTexts::versionLine(std::nullopt).isEmpty());
    EXPECT_TRUE(AppsTexts::versionLine(QStringLiteral("  ")).isEmpty());
    EXPECT_EQ(AppsTexts::uninstallLabel(1'200'000'000), QStringLiteral("Desinstalar · 1,2 GB"));
    QLocale::setDefault(QLocale::c());
}

TEST(AppsTexts, TheTileShowsALetterOrDigitAndKeepsItsColourAcrossRuns)
{
    EXPECT_EQ(AppsTexts::initial(QStringLiteral("writer")), QStringLiteral("W"));
    EXPECT_EQ(AppsTexts::initial(QStringLiteral("éclair")), QStringLiteral("É"));
    EXPECT_EQ(AppsTexts::initial(QStringLiteral("  -1Password")), QStringLiteral("1"));
    EXPECT_EQ(AppsTexts::initial(QString()), QStringLiteral("?"));
    EXPECT_EQ(AppsTexts::initial(QStringLiteral("🎵 ")), QStringLiteral("?"));
    // A name read from bytes that are not UTF-8 carries lone surrogates: no half character shows.
    EXPECT_EQ(AppsTexts::initial(QString(QChar(0xDC80 + 0x7F))), QStringLiteral("?"));

    const double hue = AppsTexts::tileHue(QStringLiteral("Writer"));
    EXPECT_GE(hue, 0.0);
    EXPECT_LT(hue, 1.0);
    EXPECT_EQ(hue, AppsTexts::tileHue(QStringLiteral("Writer")));
    // Fixed by the algorithm, not by the process: the same figure on every run and machine.
    EXPECT_DOUBLE_EQ(AppsTexts::tileHue(QString()), double(2166136261u % 360u) / 360.0);
}
