#include "core/files/Home.h"

#include <gtest/gtest.h>

// This executable runs with NUBO_HOME=/tmp/nubo-home-override// (see CMakeLists.txt): the override
// is cleaned, used, and read once, so a later change of the environment moves nothing.
TEST(Home, EnvironmentOverrideIsCleanedUsedAndReadOnce)
{
    EXPECT_EQ(nubo::Home::url(), QStringLiteral("/tmp/nubo-home-override"));
    EXPECT_EQ(nubo::Home::path(QStringLiteral("Library/Caches")),
              QStringLiteral("/tmp/nubo-home-override/Library/Caches"));
    EXPECT_EQ(nubo::Home::path(QString()), nubo::Home::url());
    qputenv("NUBO_HOME", "/somewhere/else");
    EXPECT_EQ(nubo::Home::url(), QStringLiteral("/tmp/nubo-home-override"));
    qputenv("NUBO_HOME", "/tmp/nubo-home-override//");
}
