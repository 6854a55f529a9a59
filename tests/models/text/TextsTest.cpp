#include "core/launch/LaunchItem.h"
#include "models/activity/ActivityTexts.h"
#include "models/apps/AppsTexts.h"
#include "models/clean/CleanTexts.h"
#include "models/home/HomeTexts.h"
#include "models/home/Recommendations.h"
#include "models/menubar/MenuBarTexts.h"
#include "models/menubar/PanelPlacement.h"
#include "models/performance/PerformanceTexts.h"
#include "models/text/Counts.h"
#include "models/text/ResultTexts.h"
#include "support/Column.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>
#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <optional>

using namespace nubo;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// The texts use the Spanish decimal comma; each test runs in that locale.
class SpanishTexts : public ::testing::Test
{
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }
};

// A built text and what it must read; `what` names the row when it does not.
struct Row
{
    const char* what;
    QString got;
    const char* want;
};

void expectRows(std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
        EXPECT_EQ(row.got, QString::fromUtf8(row.want)) << row.what;
}

LaunchItem launchItem(LaunchItem::Scope scope, const char* label, const char* name, const char* program,
                      bool enabled = true)
{
    LaunchItem item;
    item.scope = scope;
    item.label = QString::fromUtf8(label);
    item.name = QString::fromUtf8(name);
    item.program = QString::fromUtf8(program);
    item.isEnabled = enabled;
    return item;
}

} // namespace

TEST_F(SpanishTexts, CountsAreSingularOnlyForOneAndNeverReadBelowNone)
{
    expectRows({
        {"one item", Counts::items(1), "1 elemento"},
        {"no item", Counts::items(0), "0 elementos"},
        {"no digit grouping", Counts::items(12'345), "12345 elementos"},
        {"no failure", ResultTexts::toastFailures(0), ""},
        {"one failure", ResultTexts::toastFailures(1), "1 elemento no se pudo borrar"},
        {"failures", ResultTexts::toastFailures(2), "2 elementos no se pudieron borrar"},
        {"one selected", CleanTexts::selectionLine(1), "1 elemento seleccionado"},
        {"none selected", CleanTexts::selectionLine(0), "0 elementos seleccionados"},
        {"category empty", CleanTexts::categoryCount(false, 0), "Nada que limpiar"},
        {"category count", CleanTexts::categoryCount(false, 2), "2 elementos"},
        {"category loading", CleanTexts::categoryCount(true, 4), ""},
        {"zones", CleanTexts::progressLine(18, 5), "13 de 18 zonas revisadas"},
        {"more loading than zones", CleanTexts::progressLine(18, 25), "0 de 18 zonas revisadas"},
        {"negative loading", CleanTexts::progressLine(18, -3), "18 de 18 zonas revisadas"},
        {"no zones", CleanTexts::progressLine(0, 0), "0 de 0 zonas revisadas"},
        {"one unused app", HomeTexts::unusedTitle(1), "1 app sin usar"},
        {"unused apps", HomeTexts::unusedTitle(5), "5 apps sin usar"},
        {"one snapshot", PerformanceTexts::snapshots(1), "1 instantánea en el disco. "},
        {"snapshots", PerformanceTexts::snapshots(2), "2 instantáneas en el disco. "},
        {"no snapshot", PerformanceTexts::snapshots(-1), "No hay instantáneas locales ahora mismo."},
        {"negative enabled", PerformanceTexts::activeCount(-3), "0 ítems de inicio activos"},
        {"confirm one", ResultTexts::confirmationTitle(QStringLiteral("Eliminar"), 1, 0),
         "¿Eliminar 1 elemento (0 KB)?"},
        {"confirm many", ResultTexts::confirmationTitle(QStringLiteral("Desinstalar"), 3, 1'200'000'000),
         "¿Desinstalar 3 elementos (1,2 GB)?"},
    });
}

TEST_F(SpanishTexts, AmountsUseTheByteFormatAndNothingOrLessReadsAsNothing)
{
    expectRows({
        {"freed nothing", ResultTexts::toastHeadline(0), "Nada que liberar"},
        {"freed less than nothing", ResultTexts::toastHeadline(-3), "Nada que liberar"},
        {"one byte rounds up", ResultTexts::toastHeadline(1), "1 KB liberados"},
        {"freed", ResultTexts::toastHeadline(5'000'000'000), "5 GB liberados"},
        {"nothing today", ResultTexts::freedToday(0), ""},
        {"today", ResultTexts::freedToday(1'500'000), "Liberado hoy: 1,5 MB"},
        {"no marks", ResultTexts::mapBadge(0), ""},
        {"marks are a count, not a size", ResultTexts::mapBadge(12), "12"},
        {"negative selection", ResultTexts::cleanBadge(-1), ""},
        {"selection", ResultTexts::cleanBadge(1'200'000'000), "1,2 GB"},
        {"analysing", HomeTexts::headline(true, 5'000'000'000), "Analizando…"},
        {"clean", HomeTexts::headline(false, -3), "Todo limpio"},
        {"found", HomeTexts::headline(false, 1'200'000'000), "1,2 GB que puedes recuperar"},
        {"no safe size", HomeTexts::safeButton(0), "Limpiar"},
        {"safe size", HomeTexts::safeButton(2'500'000'000), "Limpiar 2,5 GB"},
        {"category", HomeTexts::categoryDetail(1, 60'000'000), "1 elemento · 60 MB"},
        {"not scanned", MenuBarTexts::cleanupTitle(false, 5'000'000'000), "Analizar y limpiar…"},
        {"scanned, nothing safe", MenuBarTexts::cleanupTitle(true, 0), "Limpiar 0 KB"},
        {"memory figure", MenuBarTexts::figure(true, 99, 1'500'000'000), "1,5 GB"},
    });
}

TEST_F(SpanishTexts, SharesRoundAndOddFiguresNeverShowAsNonsense)
{
    expectRows({
        {"menu share", MenuBarTexts::percent(0.425), "43 %"},
        {"menu share infinite", MenuBarTexts::percent(kInf), "0 %"},
        // A missing memory total makes the share the used bytes: a huge number, never an overflow.
        {"menu share huge", MenuBarTexts::percent(8e9), "800000000000 %"},
        {"menu processor", MenuBarTexts::figure(false, 230.0, 1), "230 %"},
        {"menu processor not a number", MenuBarTexts::figure(false, kNaN, 1), "0 %"},
        {"total processor past one core", ActivityTexts::totalCpu(412.2), "412 %"},
        {"app processor", ActivityTexts::appCpu(12.345), "12.3 %"},
        {"app processor rounds up", ActivityTexts::appCpu(99.96), "100.0 %"},
    });
    for (const double odd : {-2.5, kNaN, kInf}) {
        EXPECT_EQ(ActivityTexts::totalCpu(odd), QStringLiteral("0 %")) << odd;
        EXPECT_EQ(ActivityTexts::appCpu(odd), QStringLiteral("0.0 %")) << odd;
    }
    EXPECT_EQ(ResultTexts::percent(0.425), 43);
    EXPECT_EQ(ResultTexts::percent(0.004), 0);
    EXPECT_EQ(ResultTexts::percent(kNaN), 0);
}

TEST_F(SpanishTexts, ThresholdsSitExactlyOnTheirBoundaries)
{
    using ResultTexts::Tone;
    EXPECT_EQ(ResultTexts::fullnessTone(0.7499), Tone::Accent);
    EXPECT_EQ(ResultTexts::fullnessTone(0.75), Tone::Warning);
    EXPECT_EQ(ResultTexts::fullnessTone(0.8999), Tone::Warning);
    EXPECT_EQ(ResultTexts::fullnessTone(0.9), Tone::Critical);
    EXPECT_FALSE(HomeTexts::isWorthReviewing(52'428'799)); // 50 MiB
    EXPECT_TRUE(HomeTexts::isWorthReviewing(52'428'800));
    EXPECT_FALSE(HomeTexts::isAlmostFull(0.9));
    EXPECT_TRUE(HomeTexts::isAlmostFull(0.901));
    EXPECT_FALSE(HomeTexts::isAlmostFull(kNaN));
    EXPECT_FALSE(MenuBarTexts::isCritical(0.9));
    EXPECT_TRUE(MenuBarTexts::isCritical(0.901));

    // A missing or negative memory total counts as one byte.
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(4, 16), 0.25);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(0, 0), 0.0);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(3, -1), 3.0);
    EXPECT_TRUE(MenuBarTexts::isCritical(MenuBarTexts::memoryShare(8'000'000'000, 0)));

    const qint64 total = 16'000'000'000;
    EXPECT_EQ(ActivityTexts::memoryFraction(0, 0), 0.0);
    EXPECT_EQ(ActivityTexts::memoryFraction(-5, total), 0.0);
    EXPECT_EQ(ActivityTexts::memoryFraction(total * 2, total), 1.0);
    expectRows({
        {"no memory figures", ActivityTexts::memoryTone(0, 0), "accent"},
        {"exactly 75 %", ActivityTexts::memoryTone(12'000'000'000, total), "accent"},
        {"just past 75 %", ActivityTexts::memoryTone(12'000'000'001, total), "warning"},
        {"exactly 90 %", ActivityTexts::memoryTone(14'400'000'000, total), "warning"},
        {"just past 90 %", ActivityTexts::memoryTone(14'400'000'001, total), "critical"},
    });
}

TEST_F(SpanishTexts, OddOrMissingNamesStillReadAsOneSensibleLine)
{
    const QStringList five{QStringLiteral("Alfa"), QStringLiteral("Beta"), QStringLiteral("Gamma"),
                           QStringLiteral("Delta"), QStringLiteral("Épsilon")};
    const QString lowSurrogate(QChar(0xDC80 + 0x69)); // a byte that was not UTF-8
    expectRows({
        {"three of five named", HomeTexts::unusedDetail(five), "Sin abrir en más de 3 meses: Alfa, Beta, Gamma"},
        {"odd app name", HomeTexts::unusedDetail({QStringLiteral("Solo, \"raro\"")}),
         "Sin abrir en más de 3 meses: Solo, \"raro\""},
        {"menu nameless", MenuBarTexts::forceQuitTitle({}), "¿Forzar la salida de la app?"},
        {"menu named", MenuBarTexts::forceQuitTitle(QStringLiteral("Safari")), "¿Forzar la salida de Safari?"},
        {"activity blank", ActivityTexts::forceQuitTitle(QStringLiteral("  ")), "¿Forzar la salida de la app?"},
        {"line breaks", CleanTexts::oneLine(QStringLiteral("informe\nfinal\r.pdf")), "informe↵final↵.pdf"},
        {"tab", CleanTexts::oneLine(QStringLiteral("a\tb")), "a b"},
        {"control characters", CleanTexts::oneLine(QString(QChar(0x01)) + QChar(0x7F)), "��"},
        {"lone low surrogate", CleanTexts::oneLine(QStringLiteral("caf") + lowSurrogate), "caf�"},
        {"lone high surrogate", CleanTexts::oneLine(QString(QChar(0xD83C))), "�"},
        {"quotes and dash", CleanTexts::oneLine(QStringLiteral("-rf \"quoted\" \\ back")), "-rf \"quoted\" \\ back"},
        {"emoji kept whole", CleanTexts::oneLine(QStringLiteral("Música 🎵")), "Música 🎵"},
        {"initial", AppsTexts::initial(QStringLiteral("éclair")), "É"},
        {"initial skips signs", AppsTexts::initial(QStringLiteral("  -1Password")), "1"},
        {"no initial", AppsTexts::initial(QString()), "?"},
        {"emoji initial", AppsTexts::initial(QStringLiteral("🎵 ")), "?"},
        {"no half character", AppsTexts::initial(lowSurrogate), "?"},
        {"version", AppsTexts::versionLine(QStringLiteral("2.4.1")), "Versión 2.4.1"},
        {"blank version", AppsTexts::versionLine(QStringLiteral("  ")), ""},
        {"no version", AppsTexts::versionLine(std::nullopt), ""},
    });
    // Noon UTC is the same day in every time zone; the locale's short month may end in a dot.
    const QString march = AppsTexts::lastUsedLine(QDateTime(QDate(2026, 3, 3), QTime(12, 0), QTimeZone::utc()));
    EXPECT_TRUE(march.startsWith(QStringLiteral("Usada 3 mar")) && march.endsWith(QStringLiteral(" 2026")))
        << march.toStdString();
    EXPECT_FALSE(march.contains(QLatin1Char('.')));
    EXPECT_TRUE(AppsTexts::lastUsedLine(std::nullopt).isEmpty());
    EXPECT_TRUE(AppsTexts::lastUsedLine(QDateTime()).isEmpty());
    // The tile's colour is the same on every run: Qt's own hash is seeded per process.
    EXPECT_DOUBLE_EQ(AppsTexts::tileHue(QString()), 61.0 / 360.0);
    const double hue = AppsTexts::tileHue(QStringLiteral("Writer"));
    EXPECT_TRUE(hue >= 0.0 && hue < 1.0);
}

TEST_F(SpanishTexts, LeftoverFoldersAreNamedOnlyOnAnExactMatchAndTheBundleAlwaysWins)
{
    const QString caches = QStringLiteral("Caches");
    EXPECT_EQ(AppsTexts::removalLabel(caches, false), QStringLiteral("Cachés"));
    // An application called "Caches" is still the application.
    EXPECT_EQ(AppsTexts::removalLabel(caches, true), QStringLiteral("Aplicación"));
    EXPECT_EQ(AppsTexts::removalSymbol(caches, true), QStringLiteral("app.fill"));
    EXPECT_NE(AppsTexts::removalSymbol(caches, false), QStringLiteral("app.fill"));
    EXPECT_EQ(AppsTexts::removalSymbol(QStringLiteral("Unheard Of"), false), QStringLiteral("folder.fill"));
    // Names that only look like a known folder are shown exactly as found.
    for (const QString& name : {QStringLiteral("caches"), QStringLiteral("Caches "), QStringLiteral("WebKit"),
                                QString(), QStringLiteral("-rf \"x\"\\\n")}) {
        EXPECT_EQ(AppsTexts::removalLabel(name, false), name);
        EXPECT_FALSE(AppsTexts::removalSymbol(name, false).isEmpty());
    }
}

TEST(PerformanceTexts, ALaunchItemsDetailsTellItApartFromItsNameOnOneLine)
{
    using Scope = LaunchItem::Scope;
    expectRows({
        {"label tells the app's jobs apart",
         PerformanceTexts::details(launchItem(Scope::agent, "com.dropbox.updater", "Dropbox", "/Applications/D.app/u")),
         "Todos los usuarios · com.dropbox.updater"},
        {"named by its label: the program's file",
         PerformanceTexts::details(launchItem(Scope::daemon, "com.x.helper", "com.x.helper", "/Library/x/helper")),
         "Sistema · helper"},
        {"nothing more to tell", PerformanceTexts::details(launchItem(Scope::user, "job", "job", "")), "Tu usuario"},
        {"program ending in a slash", PerformanceTexts::details(launchItem(Scope::user, "job", "job", "/opt/tool/")),
         "Tu usuario · /opt/tool/"},
        {"switched off, line break in the label",
         PerformanceTexts::details(launchItem(Scope::user, "com.odd\nlabel", "Odd", "/bin/true", false)),
         "Tu usuario · com.odd label · Desactivado"},
    });
}

namespace {

Recommendations::Inputs::Category category(const char* id, qint64 size, qint64 count = 2)
{
    return {QString::fromUtf8(id), QStringLiteral("trash"), QString::fromUtf8(id), QStringLiteral("teal"),
            count, size};
}

QStringList ids(const QList<Recommendation>& list)
{
    return test::column(list, &Recommendation::id);
}

} // namespace

TEST_F(SpanishTexts, RecommendationsFrom50MiBBySizeWithTheFullDiskAlwaysFirst)
{
    Recommendations::Inputs in;
    in.diskFraction = 0.9;
    in.mapScanned = true;
    EXPECT_TRUE(Recommendations::build(in).isEmpty()); // a healthy, explored Mac

    // Ties keep the catalogue's order; just under 50 MiB is left out.
    in.categories = {category("under", 52'428'799), category("exact", 52'428'800, 1),
                     category("huge", 4'000'000'000), category("twin", 52'428'800)};
    QList<Recommendation> list = Recommendations::build(in);
    EXPECT_EQ(ids(list), (QStringList{QStringLiteral("category:huge"), QStringLiteral("category:exact"),
                                      QStringLiteral("category:twin")}));
    EXPECT_EQ(list[1].detail, QStringLiteral("1 elemento · 52,4 MB"));
    EXPECT_EQ(list[1].perform, Recommendation::Action::RevealCategory);
    EXPECT_EQ(list[1].categoryId, QStringLiteral("exact"));

    in.diskFraction = 0.901;
    list = Recommendations::build(in);
    EXPECT_EQ(list[0].id, QStringLiteral("disk"));
    EXPECT_EQ(list[0].perform, Recommendation::Action::OpenMap);
}

TEST_F(SpanishTexts, UnusedAppsCountTheirSizeOnlyOnceMeasuredAndStayBeforeTheMap)
{
    Recommendations::Inputs in;
    in.unusedApps = {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D"),
                     QStringLiteral("E")};
    in.unusedSize = 3'000'000'000;
    in.categories = {category("small", 100'000'000)};

    QList<Recommendation> list = Recommendations::build(in);
    ASSERT_EQ(ids(list), (QStringList{QStringLiteral("category:small"), QStringLiteral("unused"),
                                      QStringLiteral("map")}));
    EXPECT_EQ(list[1].size, 0);
    EXPECT_EQ(list[1].toMap().value(QStringLiteral("sizeText")).toString(), QString());
    EXPECT_EQ(list[1].perform, Recommendation::Action::ShowUnusedApps);

    in.unusedSizesLoaded = true;
    list = Recommendations::build(in);
    EXPECT_EQ(list.first().id, QStringLiteral("unused"));
    EXPECT_EQ(list.first().toMap().value(QStringLiteral("sizeText")).toString(), QStringLiteral("3 GB"));
}

TEST(PanelPlacement, CentredUnderTheIconAndKeptOnScreen)
{
    const QRect screen(0, 25, 1440, 875); // below a 25-point menu bar
    const QSize panel(320, 560);
    EXPECT_EQ(PanelPlacement::position(QRect(700, 0, 24, 24), panel, screen), QPoint(552, 30));
    // Icons at either edge: the panel stays whole on the screen.
    EXPECT_LE(PanelPlacement::position(QRect(1420, 0, 20, 24), panel, screen).x() + panel.width(), 1440);
    EXPECT_GE(PanelPlacement::position(QRect(0, 0, 20, 24), panel, screen).x(), 0);
    // An icon the system cannot place: the top right corner of the free area.
    EXPECT_EQ(PanelPlacement::position(QRect(), panel, screen), QPoint(1440 - 6 - 320, 25 + 6));
    // A tray at the foot of the screen opens the panel above the icon.
    EXPECT_LE(PanelPlacement::position(QRect(1300, 876, 24, 24), panel, QRect(0, 0, 1440, 876)).y() + 560, 876);
    // A panel taller than the screen starts at its top rather than above it.
    EXPECT_EQ(PanelPlacement::position(QRect(700, 0, 24, 24), QSize(320, 2000), screen).y(), 25);
}
