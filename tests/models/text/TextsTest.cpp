#include "core/launch/LaunchItem.h"
#include "models/activity/ActivityTexts.h"
#include "models/apps/AppsTexts.h"
#include "models/clean/CleanTexts.h"
#include "models/home/HomeTexts.h"
#include "models/home/Recommendations.h"
#include "models/map/MapModel.h"
#include "models/map/MapTexts.h"
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
#include <tuple>

using namespace nubo;
using namespace Qt::StringLiterals;

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

// A built text and what it must read; `what` names the row.
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

} // namespace

// One row per rule of each text: singular only for one, zero as plural or as its own sentence,
// nothing or less as nothing, counts clamped. How a size itself reads is BytesTest's; the plural
// failure line, the freed line and the day's line are read through the state in AppStateTest, the
// plural unused title in HomeSummaryTest.
TEST_F(SpanishTexts, CountsAndAmountsAreSingularOnlyForOneAndNothingOrLessReadsAsNothing)
{
    expectRows({
        {"one item", Counts::items(1), "1 elemento"},
        {"no item", Counts::items(0), "0 elementos"},
        {"grouped as the locale writes it", Counts::items(12'345), "12.345 elementos"},
        {"map line", MapTexts::mapLine(u"Tu carpeta"_s, 1'200'000'000, 16'168), "Tu carpeta · 1,2 GB · 16.168 archivos"},
        {"scanning home", MapModel::Scope{}.scanningTitle(), "Analizando tu carpeta"},
        {"scanning the disk", MapModel::Scope{MapModel::Scope::Kind::Disk, {}}.scanningTitle(),
         "Analizando el disco completo"},
        {"scanning a folder", MapModel::Scope{MapModel::Scope::Kind::Folder, u"/Users/ana/Fotos"_s}.scanningTitle(),
         "Analizando Fotos"},
        {"no failure", ResultTexts::toastFailures(0), ""},
        {"one failure", ResultTexts::toastFailures(1), "1 elemento no se pudo borrar"},
        {"one selected", CleanTexts::selectionLine(1), "1 elemento seleccionado"},
        {"none selected", CleanTexts::selectionLine(0), "0 elementos seleccionados"},
        {"category empty", CleanTexts::categoryCount(false, 0), "Nada que limpiar"},
        {"category loading", CleanTexts::categoryCount(true, 4), ""},
        {"zones", CleanTexts::progressLine(18, 5), "13 de 18 zonas revisadas"},
        {"more loading than zones", CleanTexts::progressLine(18, 25), "0 de 18 zonas revisadas"},
        {"negative loading", CleanTexts::progressLine(18, -3), "18 de 18 zonas revisadas"},
        {"one unused app", HomeTexts::unusedTitle(1), "1 app sin usar"},
        {"one snapshot", PerformanceTexts::snapshots(1), "1 instantánea en el disco. "},
        {"snapshots", PerformanceTexts::snapshots(2), "2 instantáneas en el disco. "},
        {"no snapshot", PerformanceTexts::snapshots(-1), "No hay instantáneas locales ahora mismo."},
        {"negative enabled", PerformanceTexts::activeCount(-3), "0 ítems de inicio activos"},
        {"confirmation", ResultTexts::confirmationTitle(u"Desinstalar"_s, 3, 1'200'000'000),
         "¿Desinstalar 3 elementos (1,2 GB)?"},
        {"freed less than nothing", ResultTexts::toastHeadline(-3), "Nada que liberar"},
        {"nothing today", ResultTexts::freedToday(0), ""},
        {"a disk without a name", ResultTexts::diskName(QString()), "Disco de inicio"},
        {"no marks", ResultTexts::mapBadge(0), ""},
        {"marks are a count, not a size", ResultTexts::mapBadge(12), "12"},
        {"negative selection", ResultTexts::cleanBadge(-1), ""},
        {"analysing", HomeTexts::headline(true, 5'000'000'000), "Analizando…"},
        {"clean", HomeTexts::headline(false, -3), "Todo limpio"},
        {"found", HomeTexts::headline(false, 1'200'000'000), "1,2 GB que puedes recuperar"},
        {"no safe size", HomeTexts::safeButton(0), "Limpiar"},
        {"safe size", HomeTexts::safeButton(2'500'000'000), "Limpiar 2,5 GB"},
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
        {"menu processor not a number", MenuBarTexts::figure(false, kNaN, 1), "0 %"},
        {"total processor past one core", ActivityTexts::totalCpu(412.2), "412 %"},
        {"app processor", ActivityTexts::appCpu(12.345), "12.3 %"},
    });
    for (const double odd : {-2.5, kNaN, kInf})
        EXPECT_EQ(ActivityTexts::totalCpu(odd) + u" "_s + ActivityTexts::appCpu(odd), u"0 % 0.0 %"_s) << odd;
    EXPECT_EQ((QList<int>{ResultTexts::percent(0.425), ResultTexts::percent(0.004), ResultTexts::percent(kNaN)}),
              (QList<int>{43, 0, 0}));
}

// Where 50 MiB and a nearly full disk start is RecommendationsFrom50MiB… below; a disk exactly
// 75 % full reads "warning" in AppStateTest.
TEST_F(SpanishTexts, ThresholdsSitExactlyOnTheirBoundaries)
{
    using ResultTexts::Tone;
    EXPECT_EQ(ResultTexts::fullnessTone(0.7499), Tone::Accent);
    EXPECT_EQ(ResultTexts::fullnessTone(0.8999), Tone::Warning);
    EXPECT_EQ(ResultTexts::fullnessTone(0.9), Tone::Critical);
    EXPECT_FALSE(HomeTexts::isAlmostFull(kNaN));
    EXPECT_FALSE(MenuBarTexts::isCritical(0.9));
    EXPECT_TRUE(MenuBarTexts::isCritical(0.901));
    // A missing or negative memory total counts as one byte.
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(4, 16), 0.25);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(0, 0), 0.0);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(3, -1), 3.0);
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
    const QString lowSurrogate(QChar(0xDC80 + 0x69)); // a byte that was not UTF-8
    const QString high(QChar(0xD83C));                // half of a character, with nothing after it
    expectRows({
        {"three of five named", HomeTexts::unusedDetail({u"Alfa"_s, u"Beta"_s, u"Gamma"_s, u"Delta"_s, u"Eco"_s}),
         "Sin abrir en más de 3 meses: Alfa, Beta, Gamma"},
        {"odd app name", HomeTexts::unusedDetail({u"Solo, \"raro\""_s}), "Sin abrir en más de 3 meses: Solo, \"raro\""},
        {"menu nameless", MenuBarTexts::forceQuitTitle({}), "¿Forzar la salida de la app?"},
        {"menu named", MenuBarTexts::forceQuitTitle(u"Safari"_s), "¿Forzar la salida de Safari?"},
        {"activity blank", ActivityTexts::forceQuitTitle(u"  "_s), "¿Forzar la salida de la app?"},
        {"line breaks and tab", CleanTexts::oneLine(u"informe\nfinal\r\t.pdf"_s), "informe↵final↵ .pdf"},
        {"control characters and lone halves",
         CleanTexts::oneLine(QString(QChar(0x01)) + QChar(0x7F) + u"caf"_s + lowSurrogate + high), "��caf��"},
        {"quotes, dash and emoji kept whole", CleanTexts::oneLine(u"-rf \"q\" \\ Música 🎵"_s),
         "-rf \"q\" \\ Música 🎵"},
        {"initial", AppsTexts::initial(u"éclair"_s), "É"},
        {"initial skips signs", AppsTexts::initial(u"  -1Password"_s), "1"},
        {"no letter, no half character", AppsTexts::initial(u"🎵 "_s + lowSurrogate), "?"},
        {"version", AppsTexts::versionLine(u"2.4.1"_s), "Versión 2.4.1"},
        {"blank version", AppsTexts::versionLine(u"  "_s), ""},
        {"no version", AppsTexts::versionLine(std::nullopt), ""},
    });
    // Noon UTC is the same day in every time zone; the locale's short month may end in a dot.
    const QString march = AppsTexts::lastUsedLine(QDateTime(QDate(2026, 3, 3), QTime(12, 0), QTimeZone::utc()));
    EXPECT_TRUE(march.startsWith(u"Usada 3 mar"_s) && march.endsWith(u" 2026"_s)) << march.toStdString();
    EXPECT_FALSE(march.contains(QLatin1Char('.')));
    EXPECT_TRUE(AppsTexts::lastUsedLine(std::nullopt).isEmpty());
    EXPECT_TRUE(AppsTexts::lastUsedLine(QDateTime()).isEmpty());
    // The tile's colour is the same on every run: Qt's own hash is seeded per process.
    EXPECT_DOUBLE_EQ(AppsTexts::tileHue(QString()), 61.0 / 360.0);
}

// A Linux user never reads of the Mac's things; a long list of packages reads as a sentence.
TEST_F(SpanishTexts, LinuxWordsNeverNameTheMacsThingsAndARefusalNamesAFewPackages)
{
    for (const QString& text : {AppsTexts::removalNote(HostSystem::Linux), AppsTexts::emptyNote(HostSystem::Linux),
                                HomeTexts::footer(HostSystem::Linux), HomeTexts::nothingToReview(HostSystem::Linux)}) {
        for (const char* macWord : {"Mac", "Biblioteca", "Finder", "App Store"})
            EXPECT_FALSE(text.contains(QString::fromUtf8(macWord))) << text.toStdString();
    }
    EXPECT_TRUE(AppsTexts::removalNote(HostSystem::Mac).contains(u"Biblioteca"_s));
    InstalledApp package;
    package.package = u"obconf"_s;
    AppRemoval removal;
    removal.refusal = AppRemoval::Refusal::TakesOthers;
    removal.others = {u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s, u"g"_s};
    EXPECT_EQ(AppsTexts::refusal(removal, package),
              u"Nubo no la desinstala: quitar el paquete obconf quitaría también a, b, c, d y 3 más."_s);
    EXPECT_EQ(AppsTexts::uninstallLabel(std::nullopt), u"Desinstalar"_s);
}

TEST_F(SpanishTexts, LeftoverFoldersAreNamedOnlyOnAnExactMatchAndTheBundleAlwaysWins)
{
    const QString caches = u"Caches"_s;
    EXPECT_EQ(AppsTexts::removalLabel(caches, false), u"Cachés"_s);
    // An application called "Caches" is still the application.
    EXPECT_EQ(AppsTexts::removalLabel(caches, true), u"Aplicación"_s);
    EXPECT_EQ(AppsTexts::removalSymbol(caches, true), u"app.fill"_s);
    EXPECT_NE(AppsTexts::removalSymbol(caches, false), u"app.fill"_s);
    EXPECT_EQ(AppsTexts::removalSymbol(u"Unheard Of"_s, false), u"folder.fill"_s);
    // Names that only look like a known folder are shown exactly as found.
    for (const QString& name : {u"caches"_s, u"Caches "_s, u"WebKit"_s, QString(), u"-rf \"x\"\\\n"_s}) {
        EXPECT_EQ(AppsTexts::removalLabel(name, false), name);
        EXPECT_FALSE(AppsTexts::removalSymbol(name, false).isEmpty());
    }
}

TEST(PerformanceTexts, ALaunchItemsDetailsTellItApartFromItsNameOnOneLine)
{
    using Scope = LaunchItem::Scope;
    const auto details = [](Scope scope, const char* label, const char* name, const char* program, bool on = true) {
        return PerformanceTexts::details({.url = {}, .label = QString::fromUtf8(label),
                                          .program = QString::fromUtf8(program), .scope = scope, .isEnabled = on,
                                          .name = QString::fromUtf8(name), .appURL = {}});
    };
    expectRows({
        {"label tells the app's jobs apart", details(Scope::agent, "com.dropbox.updater", "Dropbox", "/Applications/D.app/u"),
         "Todos los usuarios · com.dropbox.updater"},
        {"named by its label: the program's file", details(Scope::daemon, "com.x.helper", "com.x.helper", "/Library/x/helper"),
         "Sistema · helper"},
        {"nothing more to tell", details(Scope::user, "job", "job", ""), "Tu usuario"},
        {"program ending in a slash", details(Scope::user, "job", "job", "/opt/tool/"), "Tu usuario · /opt/tool/"},
        {"switched off, line break in the label", details(Scope::user, "com.odd\nlabel", "Odd", "/bin/true", false),
         "Tu usuario · com.odd label · Desactivado"},
    });
}

namespace {

Recommendations::Inputs::Category category(const char* id, qint64 size, qint64 count = 2)
{
    return {QString::fromUtf8(id), u"trash"_s, QString::fromUtf8(id), u"teal"_s, count, size};
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
    EXPECT_EQ(ids(list), (QStringList{u"category:huge"_s, u"category:exact"_s, u"category:twin"_s}));
    EXPECT_EQ(std::tie(list[1].detail, list[1].perform, list[1].categoryId),
              std::tuple(u"1 elemento · 52,4 MB"_s, Recommendation::Action::RevealCategory, u"exact"_s));
    // The detail already says the size: the row does not repeat it.
    EXPECT_EQ(list[1].toMap().value(u"sizeText"_s).toString(), QString());

    in.diskFraction = 0.901;
    list = Recommendations::build(in);
    EXPECT_EQ(std::tie(list[0].id, list[0].perform), std::tuple(u"disk"_s, Recommendation::Action::OpenMap));
}

TEST_F(SpanishTexts, UnusedAppsCountTheirSizeOnlyOnceMeasuredAndStayBeforeTheMap)
{
    Recommendations::Inputs in;
    in.unusedApps = {u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s};
    in.unusedSize = 3'000'000'000;
    in.categories = {category("small", 100'000'000)};

    QList<Recommendation> list = Recommendations::build(in);
    ASSERT_EQ(ids(list), (QStringList{u"category:small"_s, u"unused"_s, u"map"_s}));
    EXPECT_EQ(list[1].size, 0);
    EXPECT_EQ(list[1].toMap().value(u"sizeText"_s).toString(), QString());
    EXPECT_EQ(list[1].perform, Recommendation::Action::ShowUnusedApps);

    in.unusedSizesLoaded = true;
    list = Recommendations::build(in);
    EXPECT_EQ(list.first().id, u"unused"_s);
    EXPECT_EQ(list.first().toMap().value(u"sizeText"_s).toString(), u"3 GB"_s);
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
