#include "core/files/Home.h"

#include <gtest/gtest.h>

// This executable runs with NUBO_HOME=/tmp/nubo-home-override// (see CMakeLists.txt).
TEST(Home, EnvironmentOverrideIsCleanedAndUsed)
{
    EXPECT_EQ(nubo::Home::url(), QStringLiteral("/tmp/nubo-home-override"));
    EXPECT_EQ(nubo::Home::path(QStringLiteral("Library/Caches")),
              QStringLiteral("/tmp/nubo-home-override/Library/Caches"));
    EXPECT_EQ(nubo::Home::path(QString()), nubo::Home::url());
}

TEST(Home, IsReadOncePerProcess)
{
    const QString first = nubo::Home::url();
    qputenv("NUBO_HOME", "/somewhere/else");
    EXPECT_EQ(nubo::Home::url(), first);
    qputenv("NUBO_HOME", "/tmp/nubo-home-override//");
}
