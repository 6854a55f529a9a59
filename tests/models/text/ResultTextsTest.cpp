#include "models/text/Counts.h"
#include "models/text/ResultTexts.h"

#include <gtest/gtest.h>

#include <QLocale>

#include <cmath>

using namespace nubo;
using ResultTexts::Tone;

// These texts use the Spanish decimal comma; the test executable runs in that locale.
class ResultTextsTest : public ::testing::Test
{
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }
};

TEST_F(ResultTextsTest, ToastSaysWhatWasFreedAndWhatFailed)
{
    EXPECT_EQ(ResultTexts::toastHeadline(0), QStringLiteral("Nada que liberar"));
    EXPECT_EQ(ResultTexts::toastHeadline(-3), QStringLiteral("Nada que liberar"));
    EXPECT_EQ(ResultTexts::toastHeadline(5'000'000'000), QStringLiteral("5 GB liberados"));
    EXPECT_EQ(ResultTexts::toastHeadline(1), QStringLiteral("1 KB liberados"));

    EXPECT_EQ(ResultTexts::toastFailures(0), QString());
    EXPECT_EQ(ResultTexts::toastFailures(1), QStringLiteral("1 elemento no se pudo borrar"));
    EXPECT_EQ(ResultTexts::toastFailures(2), QStringLiteral("2 elementos no se pudieron borrar"));

    EXPECT_EQ(ResultTexts::toastSymbol(0), QStringLiteral("checkmark.circle.fill"));
    EXPECT_EQ(ResultTexts::toastSymbol(2), QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_EQ(ResultTexts::toastTone(0), Tone::Success);
    EXPECT_EQ(ResultTexts::toastTone(1), Tone::Warning);
}

TEST_F(ResultTextsTest, ConfirmationTitleIsBuiltFromItsPieces)
{
    EXPECT_EQ(ResultTexts::confirmationTitle(QStringLiteral("Eliminar"), 3, 1'200'000'000),
              QStringLiteral("¿Eliminar 3 elementos (1,2 GB)?"));
    EXPECT_EQ(ResultTexts::confirmationTitle(QStringLiteral("Eliminar"), 1, 0), QStringLiteral("¿Eliminar 1 elemento (0 KB)?"));
    EXPECT_EQ(ResultTexts::confirmationTitle(QStringLiteral("Desinstalar"), 0, 2'500'000),
              QStringLiteral("¿Desinstalar 0 elementos (2,5 MB)?"));
    EXPECT_EQ(Counts::items(1), QStringLiteral("1 elemento"));
    EXPECT_EQ(Counts::items(12'345), QStringLiteral("12345 elementos"));
}

TEST_F(ResultTextsTest, DiskFiguresAndTheirTints)
{
    EXPECT_EQ(ResultTexts::diskLine(250'000'000'000, 1'000'000'000'000), QStringLiteral("250 GB disponibles de 1 TB"));
    EXPECT_EQ(ResultTexts::freedToday(0), QString());
    EXPECT_EQ(ResultTexts::freedToday(1'500'000), QStringLiteral("Liberado hoy: 1,5 MB"));

    EXPECT_EQ(ResultTexts::fullnessTone(0.0), Tone::Accent);
    EXPECT_EQ(ResultTexts::fullnessTone(0.7499), Tone::Accent);
    EXPECT_EQ(ResultTexts::fullnessTone(0.75), Tone::Warning);
    EXPECT_EQ(ResultTexts::fullnessTone(0.8999), Tone::Warning);
    EXPECT_EQ(ResultTexts::fullnessTone(0.9), Tone::Critical);
    EXPECT_EQ(ResultTexts::fullnessTone(1.0), Tone::Critical);

    EXPECT_EQ(ResultTexts::percent(0.425), 43);
    EXPECT_EQ(ResultTexts::percent(0.004), 0);
    EXPECT_EQ(ResultTexts::percent(1.0), 100);
    EXPECT_EQ(ResultTexts::percent(std::nan("")), 0);
}

TEST_F(ResultTextsTest, SidebarBadgesShowOnlyWhenThereIsSomething)
{
    EXPECT_EQ(ResultTexts::mapBadge(0), QString());
    EXPECT_EQ(ResultTexts::mapBadge(1), QStringLiteral("1"));
    EXPECT_EQ(ResultTexts::mapBadge(12), QStringLiteral("12")); // a count of nodes, never a size
    EXPECT_EQ(ResultTexts::cleanBadge(0), QString());
    EXPECT_EQ(ResultTexts::cleanBadge(-1), QString());
    EXPECT_EQ(ResultTexts::cleanBadge(1'200'000'000), QStringLiteral("1,2 GB"));
}
