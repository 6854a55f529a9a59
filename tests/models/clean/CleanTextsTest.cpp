#include "models/clean/CleanTexts.h"

#include <QLocale>
#include <gtest/gtest.h>

using namespace nubo;

TEST(CleanTexts, ProgressCountsFinishedCategoriesAndNeverLeavesTheCatalogue)
{
    EXPECT_EQ(CleanTexts::progressLine(18, 5), QStringLiteral("13 de 18 zonas revisadas"));
    EXPECT_EQ(CleanTexts::progressLine(18, 18), QStringLiteral("0 de 18 zonas revisadas"));
    EXPECT_EQ(CleanTexts::progressLine(18, 0), QStringLiteral("18 de 18 zonas revisadas"));
    // Figures that cannot come from a consistent model still read as a sane line.
    EXPECT_EQ(CleanTexts::progressLine(18, 25), QStringLiteral("0 de 18 zonas revisadas"));
    EXPECT_EQ(CleanTexts::progressLine(18, -3), QStringLiteral("18 de 18 zonas revisadas"));
    EXPECT_EQ(CleanTexts::progressLine(0, 0), QStringLiteral("0 de 0 zonas revisadas"));
}

TEST(CleanTexts, OneItemIsSingularAndEveryOtherCountPlural)
{
    EXPECT_EQ(CleanTexts::selectionLine(1), QStringLiteral("1 elemento seleccionado"));
    EXPECT_EQ(CleanTexts::selectionLine(0), QStringLiteral("0 elementos seleccionados"));
    EXPECT_EQ(CleanTexts::selectionLine(2), QStringLiteral("2 elementos seleccionados"));
    EXPECT_EQ(CleanTexts::selectionLine(12'345), QStringLiteral("12345 elementos seleccionados"));

    EXPECT_EQ(CleanTexts::categoryCount(false, 0), QStringLiteral("Nada que limpiar"));
    EXPECT_EQ(CleanTexts::categoryCount(false, 1), QStringLiteral("1 elemento"));
    EXPECT_EQ(CleanTexts::categoryCount(false, 2), QStringLiteral("2 elementos"));
    // Still loading: neither "nothing" nor a count yet.
    EXPECT_TRUE(CleanTexts::categoryCount(true, 0).isEmpty());
    EXPECT_TRUE(CleanTexts::categoryCount(true, 4).isEmpty());

    EXPECT_EQ(CleanTexts::detailCountLine(0, 1), QStringLiteral("0 de 1 seleccionados"));
    EXPECT_EQ(CleanTexts::detailCountLine(3, 7), QStringLiteral("3 de 7 seleccionados"));
}

TEST(CleanTexts, AFullySelectedCategoryOffersToUntickAndAnyOtherToTickAll)
{
    EXPECT_EQ(CleanTexts::categoryHelp(true), QStringLiteral("No limpiar"));
    EXPECT_EQ(CleanTexts::categoryHelp(false), QStringLiteral("Limpiar todo"));
    EXPECT_EQ(CleanTexts::toggleAllLabel(true), QStringLiteral("Desmarcar todo"));
    EXPECT_EQ(CleanTexts::toggleAllLabel(false), QStringLiteral("Marcar todo"));
}

TEST(CleanTexts, HeadingsFollowTheScanAndSizesUseTheByteFormat)
{
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    EXPECT_EQ(CleanTexts::overviewLine(true, 5'000'000'000), QStringLiteral("Analizando…"));
    EXPECT_EQ(CleanTexts::overviewLine(false, 1'200'000'000), QStringLiteral("1,2 GB encontrados"));
    EXPECT_EQ(CleanTexts::overviewLine(false, 0), QStringLiteral("0 KB encontrados"));
    EXPECT_EQ(CleanTexts::summaryHeading(true), QStringLiteral("Buscando espacio…"));
    EXPECT_EQ(CleanTexts::summaryHeading(false), QStringLiteral("Puedes liberar"));
    QLocale::setDefault(QLocale::c());
}

TEST(CleanTexts, ItemSymbolsTellCommandsFoldersAndFilesApart)
{
    EXPECT_EQ(CleanTexts::itemSymbol(true, true), QStringLiteral("terminal.fill"));
    EXPECT_EQ(CleanTexts::itemSymbol(false, true), QStringLiteral("folder.fill"));
    EXPECT_EQ(CleanTexts::itemSymbol(false, false), QStringLiteral("doc.fill"));
}

TEST(CleanTexts, OddNamesShowOnOneLineAndOrdinaryOnesUnchanged)
{
    EXPECT_EQ(CleanTexts::oneLine(QStringLiteral("informe\nfinal\r.pdf")),
              QStringLiteral("informe↵final↵.pdf"));
    EXPECT_EQ(CleanTexts::oneLine(QStringLiteral("a\tb")), QStringLiteral("a b"));
    EXPECT_EQ(CleanTexts::oneLine(QString(QChar(0x01)) + QChar(0x7F)), QStringLiteral("��"));
    // A byte that was not UTF-8 is carried as a lone surrogate; it never reaches the screen as one.
    EXPECT_EQ(CleanTexts::oneLine(QStringLiteral("caf") + QChar(0xDC80 + 0x69)), QStringLiteral("caf�"));
    EXPECT_EQ(CleanTexts::oneLine(QString(QChar(0xD83C))), QStringLiteral("�"));
    for (const QString& plain :
         {QString(), QStringLiteral("-rf \"quoted\" \\ back"), QStringLiteral("Música 🎵")})
        EXPECT_EQ(CleanTexts::oneLine(plain), plain);
}
