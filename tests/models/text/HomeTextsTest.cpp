#include "models/home/HomeTexts.h"
#include "models/home/Recommendations.h"
#include "models/menubar/MenuBarTexts.h"
#include "models/menubar/PanelPlacement.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <limits>

using namespace nubo;

namespace {

class SpanishTexts : public ::testing::Test
{
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }
};

using HomeTextsTest = SpanishTexts;
using RecommendationsTest = SpanishTexts;
using MenuBarTextsTest = SpanishTexts;

QStringList ids(const QList<Recommendation>& list)
{
    QStringList out;
    for (const Recommendation& row : list)
        out << row.id;
    return out;
}

Recommendations::Inputs calm()
{
    Recommendations::Inputs in;
    in.diskFraction = 0.5;
    in.mapScanned = true;
    return in;
}

Recommendations::Inputs::Category category(const char* id, qint64 size, qint64 count = 2)
{
    return {QString::fromUtf8(id), QStringLiteral("trash"), QString::fromUtf8(id).toUpper(),
            QStringLiteral("teal"), count, size};
}

} // namespace

TEST_F(HomeTextsTest, HeadlineFollowsTheAnalysisAndWhatItFound)
{
    EXPECT_EQ(HomeTexts::headline(true, 5'000'000'000), QStringLiteral("Analizando…"));
    EXPECT_EQ(HomeTexts::headline(true, 0), QStringLiteral("Analizando…"));
    EXPECT_EQ(HomeTexts::headline(false, 0), QStringLiteral("Todo limpio"));
    EXPECT_EQ(HomeTexts::headline(false, -3), QStringLiteral("Todo limpio"));
    EXPECT_EQ(HomeTexts::headline(false, 1'200'000'000), QStringLiteral("1,2 GB que puedes recuperar"));
    EXPECT_TRUE(HomeTexts::headline(false, 1).endsWith(QStringLiteral(" que puedes recuperar")));
}

TEST_F(HomeTextsTest, HeaderLinesAndTheSafeShare)
{
    EXPECT_EQ(HomeTexts::diskLine(181'000'000'000, 994'000'000'000),
              QStringLiteral("181 GB disponibles de 994 GB"));
    EXPECT_EQ(HomeTexts::diskLine(0, 0), QStringLiteral("0 KB disponibles de 0 KB"));
    EXPECT_EQ(HomeTexts::zonesLine(18), QStringLiteral("18 zonas revisadas"));
    EXPECT_EQ(HomeTexts::safeShare(2'500'000'000),
              QStringLiteral("2,5 GB se pueden borrar sin riesgo. El resto, mejor que lo revises."));
    EXPECT_EQ(HomeTexts::safeButton(0), QStringLiteral("Limpiar"));
    EXPECT_EQ(HomeTexts::safeButton(2'500'000'000), QStringLiteral("Limpiar 2,5 GB"));
}

TEST_F(HomeTextsTest, ThresholdsSitExactlyOnTheirBoundaries)
{
    EXPECT_FALSE(HomeTexts::isWorthReviewing(52'428'799));
    EXPECT_TRUE(HomeTexts::isWorthReviewing(52'428'800));
    EXPECT_FALSE(HomeTexts::isWorthReviewing(0));
    EXPECT_FALSE(HomeTexts::isAlmostFull(0.9));
    EXPECT_TRUE(HomeTexts::isAlmostFull(0.901));
    EXPECT_FALSE(HomeTexts::isAlmostFull(std::numeric_limits<double>::quiet_NaN()));
}

TEST_F(HomeTextsTest, CountsAndUnusedAppsInSingularAndPlural)
{
    EXPECT_EQ(HomeTexts::categoryDetail(1, 60'000'000), QStringLiteral("1 elemento · 60 MB"));
    EXPECT_EQ(HomeTexts::categoryDetail(3, 1'200'000'000), QStringLiteral("3 elementos · 1,2 GB"));
    EXPECT_EQ(HomeTexts::categoryDetail(0, 0), QStringLiteral("0 elementos · 0 KB"));
    EXPECT_EQ(HomeTexts::unusedTitle(1), QStringLiteral("1 app sin usar"));
    EXPECT_EQ(HomeTexts::unusedTitle(5), QStringLiteral("5 apps sin usar"));

    const QStringList five{QStringLiteral("Alfa"), QStringLiteral("Beta"), QStringLiteral("Gamma"),
                           QStringLiteral("Delta"), QStringLiteral("Épsilon")};
    EXPECT_EQ(HomeTexts::unusedDetail(five), QStringLiteral("Sin abrir en más de 3 meses: Alfa, Beta, Gamma"));
    EXPECT_EQ(HomeTexts::unusedDetail(five.mid(0, 2)), QStringLiteral("Sin abrir en más de 3 meses: Alfa, Beta"));
    EXPECT_EQ(HomeTexts::unusedDetail({QStringLiteral("Solo, \"raro\"")}),
              QStringLiteral("Sin abrir en más de 3 meses: Solo, \"raro\""));
}

TEST_F(RecommendationsTest, NothingToSuggestOnAHealthyExploredMac)
{
    EXPECT_TRUE(Recommendations::build(calm()).isEmpty());
}

TEST_F(RecommendationsTest, DiskWarningStartsJustAboveNinetyPercentAndAlwaysLeads)
{
    Recommendations::Inputs in = calm();
    in.diskFraction = 0.9;
    EXPECT_TRUE(Recommendations::build(in).isEmpty());

    in.diskFraction = 0.901;
    in.categories = {category("big", 9'000'000'000)};
    const QList<Recommendation> list = Recommendations::build(in);
    ASSERT_EQ(ids(list), (QStringList{QStringLiteral("disk"), QStringLiteral("category:big")}));
    EXPECT_EQ(list[0].title, QStringLiteral("El disco está casi lleno"));
    EXPECT_EQ(list[0].action, QStringLiteral("Abrir mapa"));
    EXPECT_EQ(list[0].perform, Recommendation::Action::OpenMap);
}

TEST_F(RecommendationsTest, CategoriesFrom50MiBOrderedBySizeWithTiesInCatalogueOrder)
{
    Recommendations::Inputs in = calm();
    in.categories = {category("under", 52'428'799), category("exact", 52'428'800, 1),
                     category("huge", 4'000'000'000), category("twin", 52'428'800)};
    const QList<Recommendation> list = Recommendations::build(in);
    EXPECT_EQ(ids(list), (QStringList{QStringLiteral("category:huge"), QStringLiteral("category:exact"),
                                      QStringLiteral("category:twin")}));
    const Recommendation& exact = list[1];
    EXPECT_EQ(exact.detail, QStringLiteral("1 elemento · 52,4 MB"));
    EXPECT_EQ(exact.size, 52'428'800);
    EXPECT_EQ(exact.action, QStringLiteral("Revisar"));
    EXPECT_EQ(exact.perform, Recommendation::Action::RevealCategory);
    EXPECT_EQ(exact.categoryId, QStringLiteral("exact"));
    EXPECT_EQ(list[2].detail, QStringLiteral("2 elementos · 52,4 MB"));
}

TEST_F(RecommendationsTest, UnusedAppsNameThreeAndCountTheirSizeOnlyOnceMeasured)
{
    Recommendations::Inputs in = calm();
    in.unusedApps = {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D"),
                     QStringLiteral("E")};
    in.unusedSize = 3'000'000'000;
    in.categories = {category("small", 100'000'000)};
    in.mapScanned = false;

    // Sizes still being measured: no size, so the apps follow the category but stay before the map.
    QList<Recommendation> list = Recommendations::build(in);
    ASSERT_EQ(ids(list), (QStringList{QStringLiteral("category:small"), QStringLiteral("unused"),
                                      QStringLiteral("map")}));
    EXPECT_EQ(list[1].title, QStringLiteral("5 apps sin usar"));
    EXPECT_EQ(list[1].detail, QStringLiteral("Sin abrir en más de 3 meses: A, B, C"));
    EXPECT_EQ(list[1].size, 0);
    EXPECT_EQ(list[1].perform, Recommendation::Action::ShowUnusedApps);
    EXPECT_EQ(list[2].title, QStringLiteral("Explora tu carpeta personal"));
    EXPECT_EQ(list[2].symbol, QStringLiteral("circle.hexagongrid.fill"));

    in.unusedSizesLoaded = true;
    list = Recommendations::build(in);
    EXPECT_EQ(ids(list).first(), QStringLiteral("unused"));
    EXPECT_EQ(list.first().toMap().value(QStringLiteral("sizeText")).toString(), QStringLiteral("3 GB"));

    in.unusedApps = {QStringLiteral("Sola")};
    EXPECT_EQ(Recommendations::build(in).first().title, QStringLiteral("1 app sin usar"));
}

TEST_F(MenuBarTextsTest, MetersTurnRedOnlyAboveNinetyPercent)
{
    EXPECT_FALSE(MenuBarTexts::isCritical(0.9));
    EXPECT_TRUE(MenuBarTexts::isCritical(0.901));
    EXPECT_EQ(MenuBarTexts::percent(0.9), QStringLiteral("90 %"));
    EXPECT_EQ(MenuBarTexts::percent(0.425), QStringLiteral("43 %"));
    EXPECT_EQ(MenuBarTexts::percent(0), QStringLiteral("0 %"));
    EXPECT_EQ(MenuBarTexts::percent(std::numeric_limits<double>::infinity()), QStringLiteral("0 %"));
}

TEST_F(MenuBarTextsTest, MemoryShareCountsAMissingTotalAsOne)
{
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(4, 16), 0.25);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(0, 0), 0.0);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(8'000'000'000, 0), 8e9);
    EXPECT_DOUBLE_EQ(MenuBarTexts::memoryShare(3, -1), 3.0);
    EXPECT_TRUE(MenuBarTexts::isCritical(MenuBarTexts::memoryShare(8'000'000'000, 0)));
    // The figure of such a share is a plain (huge) number, never an overflowed one.
    EXPECT_EQ(MenuBarTexts::percent(8e9), QStringLiteral("800000000000 %"));
}

TEST_F(MenuBarTextsTest, RowsTitlesAndFigures)
{
    EXPECT_EQ(MenuBarTexts::available(181'000'000'000), QStringLiteral("181 GB disponibles"));
    EXPECT_EQ(MenuBarTexts::cleanupTitle(false, 5'000'000'000), QStringLiteral("Analizar y limpiar…"));
    EXPECT_EQ(MenuBarTexts::cleanupTitle(true, 0), QStringLiteral("Limpiar 0 KB"));
    EXPECT_EQ(MenuBarTexts::cleanupTitle(true, 1'500'000'000), QStringLiteral("Limpiar 1,5 GB"));
    EXPECT_EQ(MenuBarTexts::figure(false, 12.4, 1), QStringLiteral("12 %"));
    EXPECT_EQ(MenuBarTexts::figure(false, 230.0, 1), QStringLiteral("230 %"));
    EXPECT_EQ(MenuBarTexts::figure(true, 99, 1'500'000'000), QStringLiteral("1,5 GB"));
    EXPECT_EQ(MenuBarTexts::forceQuitTitle(QStringLiteral("Safari")), QStringLiteral("¿Forzar la salida de Safari?"));
    EXPECT_EQ(MenuBarTexts::forceQuitTitle({}), QStringLiteral("¿Forzar la salida de la app?"));
}

TEST(PanelPlacement, CentredUnderTheIconAndKeptOnScreen)
{
    const QRect screen(0, 25, 1440, 875); // below a 25-point menu bar
    const QSize panel(320, 560);
    // Centred under an icon in the middle of the bar, a small gap below it.
    EXPECT_EQ(PanelPlacement::position(QRect(700, 0, 24, 24), panel, screen), QPoint(552, 30));
    // An icon near the right edge: the panel stays whole on the screen.
    const QPoint right = PanelPlacement::position(QRect(1420, 0, 20, 24), panel, screen);
    EXPECT_LE(right.x() + panel.width(), 1440);
    // Near the left edge likewise.
    EXPECT_GE(PanelPlacement::position(QRect(0, 0, 20, 24), panel, screen).x(), 0);
    // An icon the system cannot place: top right corner of the free area.
    const QPoint unknown = PanelPlacement::position(QRect(), panel, screen);
    EXPECT_EQ(unknown.y(), 25 + 6);
    EXPECT_EQ(unknown.x() + panel.width(), 1440 - 6);
    // A tray at the foot of the screen opens the panel above the icon.
    const QPoint above = PanelPlacement::position(QRect(1300, 876, 24, 24), panel, QRect(0, 0, 1440, 876));
    EXPECT_LE(above.y() + panel.height(), 876);
    // A panel taller than the screen starts at its top rather than above it.
    EXPECT_EQ(PanelPlacement::position(QRect(700, 0, 24, 24), QSize(320, 2000), screen).y(), 25);
}
