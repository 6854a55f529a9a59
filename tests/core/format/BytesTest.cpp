#include "core/format/Bytes.h"

#include <gtest/gtest.h>

#include <limits>

using nubo::Bytes::string;

namespace {

const QLocale kSpanish(QLocale::Spanish, QLocale::Spain);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

struct Case
{
    qint64 bytes;
    const char* spanish;
};

} // namespace

TEST(Bytes, NothingOrLessReadsZeroKilobytes)
{
    EXPECT_EQ(string(0, kSpanish), QStringLiteral("0 KB"));
    EXPECT_EQ(string(-5, kSpanish), QStringLiteral("0 KB"));
    EXPECT_EQ(string(std::numeric_limits<qint64>::min(), kSpanish), QStringLiteral("0 KB"));
}

TEST(Bytes, UnitEdgesAndRounding)
{
    const Case cases[] = {
        {1, "1 KB"},                       // a non-empty item never reads as nothing
        {499, "1 KB"},
        {999, "1 KB"},                     // below a kilobyte is still written in KB
        {1'000, "1 KB"},
        {1'499, "1 KB"},
        {1'500, "2 KB"},                   // half rounds up
        {999'499, "999 KB"},
        {999'500, "1 MB"},                 // would read 1000 KB: the next unit instead
        {1'000'000, "1 MB"},
        {1'049'999, "1 MB"},
        {1'050'000, "1,1 MB"},
        {1'250'000, "1,3 MB"},
        {999'949'999, "999,9 MB"},
        {999'950'000, "1 GB"},             // 1000,0 MB carries into GB
        {1'500'000'000, "1,5 GB"},
        {1'234'567'890, "1,23 GB"},
        {1'205'000'000, "1,21 GB"},
        {1'200'000'000, "1,2 GB"},         // trailing zeros dropped
        {5'000'000'000, "5 GB"},
        {999'995'000'000, "1 TB"},
        {5'000'000'000'000, "5 TB"},
        {2'345'678'000'000'000, "2345,68 TB"}, // nothing above TB
        {std::numeric_limits<qint64>::max(), "9223372,04 TB"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(string(c.bytes, kSpanish), QString::fromUtf8(c.spanish)) << c.bytes;
}

TEST(Bytes, DecimalSeparatorFollowsTheLocale)
{
    EXPECT_EQ(string(1'500'000'000, kEnglish), QStringLiteral("1.5 GB"));
    EXPECT_EQ(string(1'234'567'890, kEnglish), QStringLiteral("1.23 GB"));
    EXPECT_EQ(string(1'500'000'000, kSpanish), QStringLiteral("1,5 GB"));
    EXPECT_EQ(string(2'000, kEnglish), QStringLiteral("2 KB"));
}
