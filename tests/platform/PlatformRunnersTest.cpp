#include "core/admin/AdminScript.h"
#include "core/disk/DiskInfo.h"
#include "platform/linux/PkexecAdminRunner.h"
#include "platform/linux/StorageVolumeCapacity.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace nubo;

namespace {

class PkexecAdminRunnerTest : public ::testing::Test
{
protected:
    // A stand-in for polkit's pkexec in its own folder: `body` decides what it does with the
    // command it is given ("$@" is /bin/sh -c <command line>).
    void installPkexec(const QByteArray& body)
    {
        test::writeScript(m_dir.path() + QStringLiteral("/bin/pkexec"), body);
    }

    QString folder() const { return m_dir.path() + QStringLiteral("/bin"); }

    QTemporaryDir m_dir;
};

TEST_F(PkexecAdminRunnerTest, WithoutPkexecTheRunIsUnavailable)
{
    PkexecAdminRunner runner({m_dir.path()});
    EXPECT_EQ(runner.run(AdminScript::forCommand(QStringLiteral("true"))), AdminOutcome::Unavailable);
}

TEST_F(PkexecAdminRunnerTest, RunsTheCommandLineThroughTheShell)
{
    // GIVEN a pkexec that runs what it is given
    installPkexec("exec \"$@\"");
    PkexecAdminRunner runner({folder()});
    const QString target = m_dir.path() + QStringLiteral("/it's \"here\"");
    ASSERT_TRUE(QFile(target).open(QIODevice::WriteOnly));

    // WHEN a removal of an oddly named file runs
    EXPECT_EQ(runner.run(AdminScript::forRemoval({target})), AdminOutcome::Succeeded);
    EXPECT_FALSE(QFileInfo::exists(target));
    EXPECT_TRUE(QFileInfo::exists(folder() + QStringLiteral("/pkexec")));

    // A command that fails is a failure too.
    EXPECT_EQ(runner.run(AdminScript::forCommand(QStringLiteral("exit 4"))), AdminOutcome::Failed);
}

TEST_F(PkexecAdminRunnerTest, DismissedDialogIsAFailure)
{
    installPkexec("exit 126");
    PkexecAdminRunner runner({folder()});
    EXPECT_EQ(runner.run(AdminScript::forCommand(QStringLiteral("true"))), AdminOutcome::Failed);
}

TEST(StorageVolumeCapacityTest, ReadsTheRootVolume)
{
    const StorageVolumeCapacity volume;
    const VolumeFigures figures = volume.figures(QStringLiteral("/"));
    ASSERT_TRUE(figures.total && figures.available);
    EXPECT_GT(*figures.total, 0);
    EXPECT_LE(*figures.available, *figures.total);
    EXPECT_FALSE(figures.importantUsage);

    const DiskInfo info = DiskInfo::current(volume);
    EXPECT_GT(info.fraction(), 0.0);
    EXPECT_LE(info.fraction(), 1.0);
}

TEST(StorageVolumeCapacityTest, UnreadablePathGivesNothingAndDiskInfoZero)
{
    const StorageVolumeCapacity volume;
    const VolumeFigures figures = volume.figures(QStringLiteral("/no/such/volume/here"));
    EXPECT_EQ(DiskInfo::fromFigures(figures).fraction(), 0.0);
}

} // namespace
