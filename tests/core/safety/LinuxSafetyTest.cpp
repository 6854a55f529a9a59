#include "SafetyFixture.h"

#include "core/files/MountTable.h"
#include "support/OrdinaryUser.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <unistd.h>

using namespace nubo;

namespace {

// A Linux home with localised user folders, a second disk mounted beside it and a stick mounted
// inside it, a home the program was pointed at instead (NUBO_HOME), and the gate of Linux over
// them with a mount table that says so.
class LinuxSafetyTest : public nubo::testing::SafetyFixture
{
protected:
    void SetUp() override
    {
        SafetyFixture::SetUp();
        for (const char* folder : {"home/.cache/thumbnails", "home/.ssh", "home/Descargas", "home/usb/photos",
                                   "trial/.cache/app", "data-disk/films", "outside"})
            ASSERT_TRUE(QDir(m_base.path()).mkpath(QString::fromUtf8(folder)));
        nubo::test::writeBytes(base(QStringLiteral("home/.config/user-dirs.dirs")),
                               "# written by xdg-user-dirs-update\nXDG_DOWNLOAD_DIR=\"$HOME/Descargas\"\n");
        m_mounts = {QStringLiteral("/"), QStringLiteral("/tmp"), base(QStringLiteral("data-disk")),
                    base(QStringLiteral("home/usb")), QStringLiteral("/media/ana/USB")};
        m_gate = gate({home(), m_roots.library, QStringLiteral("/tmp")});
    }

    std::unique_ptr<Safety> gate(SystemRoots roots) const
    {
        const QStringList mounts = m_mounts;
        return std::make_unique<Safety>(std::move(roots), SafetyRules::forLinux(),
                                        [mounts] { return mounts; });
    }

    QStringList m_mounts;
    std::unique_ptr<Safety> m_gate;
};

TEST_F(LinuxSafetyTest, TheSystemOtherUsersAndOtherVolumesAreNeverTheUsers)
{
    expectReasons(*m_gate,
                  {{"Zona protegida",
                    {// The system's files, other users' homes, the kernel's views, packages, volumes and what
                     // the system keeps in the shared temporary folders.
                     "/boot/vmlinuz", "/var/lib/dpkg/status", "/var/log/syslog", "/srv/www/index.html",
                     "/root/.bashrc", "/home/otheruser", "/home/otheruser/Documents/x", "/proc/1/environ",
                     "/sys/kernel/x", "/run/user/1000/x", "/snap/firefox/current", "/lib/modules",
                     "/lib64/ld-linux-x86-64.so.2", "/opt/google/chrome", "/usr/local/bin/tool",
                     "/media/ana/USB/x", "/run/media/ana/USB/x", "/mnt/backup/x", "/tmp/.X11-unix/X0",
                     "/tmp/.X0-lock", "/tmp/.ICE-unix", "/tmp/systemd-private-0a1b-colord.service-xyz",
                     "/var/tmp/systemd-private-0a1b-chronyd.service-x/tmp", "@data-disk/films", "@home/usb",
                     "@home/usb/photos/x",
                     // The user's secrets.
                     "~/.ssh/id_ed25519", "~/.local/share/keyrings/login.keyring"}},
                   {"Carpeta del sistema",
                    {"/", "/home", "/var/tmp", "~", "~/.cache", "~/.local/share/Trash/files", "~/Downloads",
                     "~/Descargas"}},
                   {"Carpeta temporal del sistema", {"/tmp"}},
                   {"allowed",
                    {"~/.cache/thumbnails", "~/Descargas/setup.deb", "~/.local/share/Trash/files/old",
                     "~/usbdata/x", "/var/tmp/mine-that-is-gone", "/tmp/gone-long-ago"}}});
}

TEST_F(LinuxSafetyTest, OutsideTheHomeOnlyTheUsersOwnItemsMayGo)
{
    nubo::test::writeFile(base(QStringLiteral("outside/mine")));
    nubo::test::writeFile(base(QStringLiteral("outside/theirs")));
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give a file away";
    ASSERT_EQ(::lchown(QFile::encodeName(base(QStringLiteral("outside/theirs"))).constData(),
                       nubo::test::kNobody, nubo::test::kNobody),
              0);
    EXPECT_EQ(reasonOf(*m_gate, base(QStringLiteral("outside/mine"))), QStringLiteral("allowed"));
    EXPECT_EQ(reasonOf(*m_gate, base(QStringLiteral("outside/theirs"))),
              QStringLiteral("Pertenece a otro usuario"));
    // In the home, what the user may not remove is still theirs to remove with the password.
    ASSERT_TRUE(QFile::rename(base(QStringLiteral("outside/theirs")), home(QStringLiteral("theirs"))));
    EXPECT_EQ(reasonOf(*m_gate, home(QStringLiteral("theirs"))), QStringLiteral("allowed"));
}

TEST_F(LinuxSafetyTest, TheRealHomeStaysProtectedWhileTheProgramWorksOnAnother)
{
    SystemRoots roots{base(QStringLiteral("trial")), m_roots.library, QStringLiteral("/tmp")};
    roots.realHome = home();
    expectReasons(*this->gate(roots), {{"Carpeta del sistema", {"~", "~/.cache", "~/Descargas", "@trial"}},
                                       {"Zona protegida", {"~/.ssh/id_ed25519"}},
                                       {"allowed", {"@trial/.cache/app"}}});
    // And the Mac's gate keeps the real home's Library as it keeps the trial one's.
    expectReasons(Safety(roots, SafetyRules::forMac()), {{"Carpeta del sistema", {"~/Library/Caches"}},
                                                         {"Zona protegida", {"~/Library/Mail/V10"}}});
}

// Paths below what a Linux system holds, other users' homes, the volumes of the mount table and
// links from the home into all of them, spelled with redundant slashes and dots: none may pass.
TEST_F(LinuxSafetyTest, NothingGeneratedBelowTheSystemOrAnotherVolumeIsEverAllowed)
{
    QStringList starts;
    for (const char* place : {"/boot", "/var/lib", "/srv", "/root",  "/home/bob",  "/proc",    "/sys",
                              "/run",  "/snap",    "/lib", "/lib64", "/opt/app",   "/media",   "/run/media",
                              "/mnt",  "/usr",     "/etc", "/dev",   "@data-disk", "@home/usb"}) {
        starts << at(place);
        // Below a dangling link nothing exists that could be removed: links go where this machine
        // has something.
        if (QFileInfo::exists(at(place))) {
            starts << home(QStringLiteral("Projects/link-%1").arg(starts.size()));
            link(at(place), starts.last());
        }
    }
    link(QStringLiteral("/home"), home(QStringLiteral("Projects/homes")));
    starts << home(QStringLiteral("Projects/homes/bob"));

    QRandomGenerator random(20261124);
    for (const QString& start : starts) {
        for (int i = 0; i < 200; ++i) {
            const QString path = randomPathBelow(start, random, 4);
            ASSERT_FALSE(m_gate->isAllowed(path)) << path.toStdString();
        }
    }
}

TEST(MountTableTest, MountPointsAreTheFifthFieldWithTheKernelsEscapesUndone)
{
    const QByteArray table = "22 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
                             "40 22 8:17 / /media/ana/My\\040Disk rw - vfat /dev/sdb1 rw\n"
                             "41 22 8:18 / /mnt/back\\134slash\\012line rw - ext4 /dev/sdb2 rw\n"
                             "42 22 8:19 / /mnt/caf\\303\\251 rw - ext4 /dev/sdb3 rw\n"
                             "malformed line\n\n";
    EXPECT_EQ(MountTable::parse(table),
              (QStringList{QStringLiteral("/"), QStringLiteral("/media/ana/My Disk"),
                           QStringLiteral("/mnt/back\\slash\nline"), QStringLiteral("/mnt/café")}));
    EXPECT_TRUE(MountTable::points(QStringLiteral("/nonexistent/mountinfo")).isEmpty());
    // On Linux the system's own table holds at least the root.
    if (QFile::exists(QString::fromLatin1(MountTable::kSystemTable))) {
        EXPECT_TRUE(MountTable::points().contains(QStringLiteral("/")));
    }
}

} // namespace
