#include "models/activity/ActivityTexts.h"

#include <QLocale>
#include <gtest/gtest.h>
#include <limits>

using namespace nubo;

namespace {

class ActivityTextsTest : public ::testing::Test
{
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }
};

} // namespace

TEST_F(ActivityTextsTest, ProcessorSharesKeepTheirDecimalsAndNeverShowNonsense)
{
    EXPECT_EQ(ActivityTexts::totalCpu(0), QStringLiteral("0 %"));
    EXPECT_EQ(ActivityTexts::totalCpu(37.4), QStringLiteral("37 %"));
    // Several busy cores add up past one hundred.
    EXPECT_EQ(ActivityTexts::totalCpu(412.2), QStringLiteral("412 %"));
    EXPECT_EQ(ActivityTexts::appCpu(12.345), QStringLiteral("12.3 %"));
    EXPECT_EQ(ActivityTexts::appCpu(0.04), QStringLiteral("0.0 %"));
    EXPECT_EQ(ActivityTexts::appCpu(99.96), QStringLiteral("100.0 %"));

    for (const double odd : {-2.5, std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(ActivityTexts::totalCpu(odd), QStringLiteral("0 %")) << odd;
        EXPECT_EQ(ActivityTexts::appCpu(odd), QStringLiteral("0.0 %")) << odd;
    }
}

TEST_F(ActivityTextsTest, MemoryReadsUsedOfTotalWithAToneThatRisesAsItFills)
{
    EXPECT_EQ(ActivityTexts::memory(8'600'000'000, 17'179'869'184), QStringLiteral("8,6 GB de 17,18 GB"));
    // Before the first sample both numbers are 0.
    EXPECT_EQ(ActivityTexts::memory(0, 0), QStringLiteral("0 KB de 0 KB"));

    const qint64 total = 16'000'000'000;
    EXPECT_EQ(ActivityTexts::memoryFraction(0, 0), 0.0);
    EXPECT_EQ(ActivityTexts::memoryFraction(-5, total), 0.0);
    EXPECT_EQ(ActivityTexts::memoryFraction(total * 2, total), 1.0);
    EXPECT_DOUBLE_EQ(ActivityTexts::memoryFraction(total / 4, total), 0.25);

    EXPECT_EQ(ActivityTexts::memoryTone(0, 0), QStringLiteral("accent"));
    EXPECT_EQ(ActivityTexts::memoryTone(12'000'000'000, total), QStringLiteral("accent")); // exactly 75 %
    EXPECT_EQ(ActivityTexts::memoryTone(12'000'000'001, total), QStringLiteral("warning"));
    EXPECT_EQ(ActivityTexts::memoryTone(14'400'000'000, total), QStringLiteral("warning")); // exactly 90 %
    EXPECT_EQ(ActivityTexts::memoryTone(14'400'000'001, total), QStringLiteral("critical"));
}

TEST_F(ActivityTextsTest, AForceQuitOfANamelessAppStillReadsAsASentence)
{
    for (const QString& blank : {QString(), QStringLiteral("  ")})
        EXPECT_EQ(ActivityTexts::forceQuitTitle(blank), QStringLiteral("¿Forzar la salida de la app?"));
}
