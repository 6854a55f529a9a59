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
        return std::make_unique<Safety>(std::move(roots), SafetyRules::forLinux(), [mounts] { return mounts; });
    }

    static QString reasonOf(const Safety& gate, const QString& path)
    {
        const Verdict verdict = gate.check(path);
        return verdict.isAllowed() ? QStringLiteral("allowed") : verdict.reason();
    }

    QStringList m_mounts;
    std::unique_ptr<Safety> m_gate;
};

TEST_F(LinuxSafetyTest, TheSystemOtherUsersAndOtherVolumesAreNeverTheUsers)
{
    const QString system = QStringLiteral("Carpeta del sistema");
    const QString zone = QStringLiteral("Zona protegida");
    const QString allowed = QStringLiteral("allowed");
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("/boot/vmlinuz"), zone},
        {QStringLiteral("/var/lib/dpkg/status"), zone},
        {QStringLiteral("/var/log/syslog"), zone},
        {QStringLiteral("/srv/www/index.html"), zone},
        {QStringLiteral("/root/.bashrc"), zone},
        {QStringLiteral("/home/otheruser"), zone},
        {QStringLiteral("/home/otheruser/Documents/x"), zone},
        {QStringLiteral("/proc/1/environ"), zone},
        {QStringLiteral("/sys/kernel/x"), zone},
        {QStringLiteral("/run/user/1000/x"), zone},
        {QStringLiteral("/snap/firefox/current"), zone},
        {QStringLiteral("/lib/modules"), zone},
        {QStringLiteral("/lib64/ld-linux-x86-64.so.2"), zone},
        {QStringLiteral("/opt/google/chrome"), zone},
        {QStringLiteral("/usr/local/bin/tool"), zone},
        {QStringLiteral("/media/ana/USB/x"), zone},
        {QStringLiteral("/run/media/ana/USB/x"), zone},
        {QStringLiteral("/mnt/backup/x"), zone},
        {QStringLiteral("/tmp/.X11-unix/X0"), zone},
        {QStringLiteral("/tmp/.X0-lock"), zone},
        {QStringLiteral("/tmp/.ICE-unix"), zone},
        {QStringLiteral("/tmp/systemd-private-0a1b-colord.service-xyz"), zone},
        {QStringLiteral("/var/tmp/systemd-private-0a1b-chronyd.service-x/tmp"), zone},
        {base(QStringLiteral("data-disk/films")), zone},
        {base(QStringLiteral("home/usb")), zone},
        {base(QStringLiteral("home/usb/photos/x")), zone},
        {home(QStringLiteral(".ssh/id_ed25519")), zone},
        {home(QStringLiteral(".local/share/keyrings/login.keyring")), zone},
        {QStringLiteral("/"), system},
        {QStringLiteral("/home"), system},
        {QStringLiteral("/tmp"), QStringLiteral("Carpeta temporal del sistema")},
        {QStringLiteral("/var/tmp"), system},
        {home(), system},
        {home(QStringLiteral(".cache")), system},
        {home(QStringLiteral(".local/share/Trash/files")), system},
        {home(QStringLiteral("Downloads")), system},
        {home(QStringLiteral("Descargas")), system},
        {home(QStringLiteral(".cache/thumbnails")), allowed},
        {home(QStringLiteral("Descargas/setup.deb")), allowed},
        {home(QStringLiteral(".local/share/Trash/files/old")), allowed},
        {home(QStringLiteral("usbdata/x")), allowed},
        {QStringLiteral("/var/tmp/mine-that-is-gone"), allowed},
        {QStringLiteral("/tmp/gone-long-ago"), allowed},
    };
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(reasonOf(*m_gate, path), expected) << path.toStdString();
}

TEST_F(LinuxSafetyTest, OutsideTheHomeOnlyTheUsersOwnItemsMayGo)
{
    nubo::test::writeFile(base(QStringLiteral("outside/mine")));
    nubo::test::writeFile(base(QStringLiteral("outside/theirs")));
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give a file away";
    ASSERT_EQ(::lchown(QFile::encodeName(base(QStringLiteral("outside/theirs"))).constData(), nubo::test::kNobody,
                       nubo::test::kNobody),
              0);
    EXPECT_EQ(reasonOf(*m_gate, base(QStringLiteral("outside/mine"))), QStringLiteral("allowed"));
    EXPECT_EQ(reasonOf(*m_gate, base(QStringLiteral("outside/theirs"))), QStringLiteral("Pertenece a otro usuario"));
    // In the home, what the user may not remove is still theirs to remove with the password.
    ASSERT_TRUE(QFile::rename(base(QStringLiteral("outside/theirs")), home(QStringLiteral("theirs"))));
    EXPECT_EQ(reasonOf(*m_gate, home(QStringLiteral("theirs"))), QStringLiteral("allowed"));
}

TEST_F(LinuxSafetyTest, TheRealHomeStaysProtectedWhileTheProgramWorksOnAnother)
{
    SystemRoots roots{base(QStringLiteral("trial")), m_roots.library, QStringLiteral("/tmp")};
    roots.realHome = home();
    const std::unique_ptr<Safety> gate = this->gate(roots);
    for (const char* relative : {"", ".cache", "Descargas"})
        EXPECT_EQ(reasonOf(*gate, home(QString::fromUtf8(relative))), QStringLiteral("Carpeta del sistema")) << relative;
    EXPECT_EQ(reasonOf(*gate, home(QStringLiteral(".ssh/id_ed25519"))), QStringLiteral("Zona protegida"));
    EXPECT_EQ(reasonOf(*gate, base(QStringLiteral("trial"))), QStringLiteral("Carpeta del sistema"));
    EXPECT_EQ(reasonOf(*gate, base(QStringLiteral("trial/.cache/app"))), QStringLiteral("allowed"));

    // And the Mac's gate keeps the real home's Library as it keeps the trial one's.
    Safety mac(roots, SafetyRules::forMac());
    EXPECT_EQ(mac.check(home(QStringLiteral("Library/Caches"))).reason(), QStringLiteral("Carpeta del sistema"));
    EXPECT_EQ(mac.check(home(QStringLiteral("Library/Mail/V10"))).reason(), QStringLiteral("Zona protegida"));
}

// Paths below what a Linux system holds, other users' homes, the volumes of the mount table and
// links from the home into all of them, spelled with redundant slashes and dots: none may pass.
TEST_F(LinuxSafetyTest, NothingGeneratedBelowTheSystemOrAnotherVolumeIsEverAllowed)
{
    const QStringList protectedPlaces = {
        QStringLiteral("/boot"),     QStringLiteral("/var/lib"),  QStringLiteral("/srv"),  QStringLiteral("/root"),
        QStringLiteral("/home/bob"), QStringLiteral("/proc"),     QStringLiteral("/sys"),  QStringLiteral("/run"),
        QStringLiteral("/snap"),     QStringLiteral("/lib"),      QStringLiteral("/lib64"), QStringLiteral("/opt/app"),
        QStringLiteral("/media"),    QStringLiteral("/run/media"), QStringLiteral("/mnt"), QStringLiteral("/usr"),
        QStringLiteral("/etc"),      QStringLiteral("/dev"),      base(QStringLiteral("data-disk")),
        base(QStringLiteral("home/usb")),
    };
    QStringList starts = protectedPlaces;
    int linkNumber = 0;
    for (const QString& place : protectedPlaces) {
        // Below a dangling link nothing exists that could be removed: links go where this machine
        // has something.
        if (!QFileInfo::exists(place))
            continue;
        const QString at = home(QStringLiteral("Projects/link-%1").arg(++linkNumber));
        link(place, at);
        starts << at;
    }
    link(QStringLiteral("/home"), home(QStringLiteral("Projects/homes")));
    starts << home(QStringLiteral("Projects/homes/bob"));

    QRandomGenerator random(20261124);
    const QStringList pieces = {QStringLiteral("a"),   QStringLiteral(".."), QStringLiteral("."),
                                QStringLiteral("x y"), QStringLiteral("-rf"), QStringLiteral("n\nl"),
                                QStringLiteral("ñ"),   QFile::decodeName(QByteArray("\xff"))};
    int checked = 0;
    for (const QString& start : starts) {
        for (int i = 0; i < 200; ++i) {
            QString path = start;
            const int depth = 1 + int(random.bounded(4));
            for (int d = 0; d < depth; ++d) {
                path += random.bounded(4) == 0 ? QStringLiteral("//") : QStringLiteral("/");
                const QString piece = pieces.at(int(random.bounded(pieces.size())));
                // ".." may only climb inside what was built, never above the protected place.
                path += piece == QLatin1String("..") ? QStringLiteral("b/..") : piece;
            }
            // Something below the start: a link itself is judged where it stands, and may go.
            path += QStringLiteral("/z");
            EXPECT_FALSE(m_gate->isAllowed(path)) << path.toStdString();
            ++checked;
        }
    }
    EXPECT_EQ(checked, starts.size() * 200);
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
