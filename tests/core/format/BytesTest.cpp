#include "core/format/Bytes.h"

#include <gtest/gtest.h>

#include <limits>

using nubo::Bytes::string;

TEST(Bytes, UnitEdgesRoundingAndTheLocalesSeparator)
{
    const QLocale spanish(QLocale::Spanish, QLocale::Spain);
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const struct
    {
        qint64 bytes;
        const char* spanish;
        const char* english;
    } cases[] = {
        {std::numeric_limits<qint64>::min(), "0 KB", "0 KB"}, // nothing or less reads zero
        {-5, "0 KB", "0 KB"},
        {0, "0 KB", "0 KB"},
        {1, "1 KB", "1 KB"},   // a non-empty item never reads as nothing
        {999, "1 KB", "1 KB"}, // below a kilobyte is still written in KB
        {1'499, "1 KB", "1 KB"},
        {1'500, "2 KB", "2 KB"}, // half rounds up
        {999'499, "999 KB", "999 KB"},
        {999'500, "1 MB", "1 MB"}, // would read 1000 KB: the next unit instead
        {1'049'999, "1 MB", "1 MB"},
        {1'050'000, "1,1 MB", "1.1 MB"},
        {1'250'000, "1,3 MB", "1.3 MB"},
        {999'949'999, "999,9 MB", "999.9 MB"},
        {999'950'000, "1 GB", "1 GB"}, // 1000,0 MB carries into GB
        {1'234'567'890, "1,23 GB", "1.23 GB"},
        {1'205'000'000, "1,21 GB", "1.21 GB"},
        {1'200'000'000, "1,2 GB", "1.2 GB"}, // trailing zeros dropped
        {5'000'000'000, "5 GB", "5 GB"},
        {999'995'000'000, "1 TB", "1 TB"},
        {2'345'678'000'000'000, "2345,68 TB", "2345.68 TB"}, // nothing above TB
        {std::numeric_limits<qint64>::max(), "9223372,04 TB", "9223372.04 TB"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(string(c.bytes, spanish), QString::fromUtf8(c.spanish)) << c.bytes;
        EXPECT_EQ(string(c.bytes, english), QString::fromUtf8(c.english)) << c.bytes;
    }
}
