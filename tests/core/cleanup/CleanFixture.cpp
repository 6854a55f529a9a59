#include "CleanFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo::testing {

void CleanFixture::SetUp()
{
    ASSERT_TRUE(m_base.isValid());
    for (const char* path : {"home/Library/Caches", "home/Library/Logs", "home/Downloads", "home/.Trash",
                             "Library/Caches", "tmp-user/T", "shared-tmp"})
        folder(QString::fromUtf8(path));
    m_roots = SystemRoots{base(QStringLiteral("home")), base(QStringLiteral("Library")), base(QStringLiteral("tmp-user/T"))};
    m_safety = std::make_unique<Safety>(m_roots, SafetyRules::forMac());
    m_privacy = std::make_unique<Privacy>(m_roots.home, [this] { return m_fullDiskAccess.load(); });
    m_naming = std::make_unique<Naming>(Naming::lookupIn(m_workspace));
    m_context = std::make_unique<CleanContext>(*m_safety, *m_privacy, *m_naming, m_tools, m_roots);
    m_context->sharedTemporaries = QStringList{base(QStringLiteral("shared-tmp"))};
}

QString CleanFixture::folder(const QString& relative) const
{
    EXPECT_TRUE(QDir(m_base.path()).mkpath(relative)) << relative.toStdString();
    return base(relative);
}

QString CleanFixture::file(const QString& relative, qint64 bytes) const
{
    const QString path = base(relative);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile out(path);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly)) << relative.toStdString();
    out.write(QByteArray(bytes, 'x'));
    return path;
}

void CleanFixture::age(const QString& path, double days) const
{
    const qint64 seconds = QDateTime::currentSecsSinceEpoch() - qint64(days * 86400);
    const timespec stamps[2] = {{time_t(seconds), 0}, {time_t(seconds), 0}};
    EXPECT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), stamps, AT_SYMLINK_NOFOLLOW), 0)
        << path.toStdString();
}

bool CleanFixture::giveAway(const QString& path) const
{
    constexpr uid_t kNobody = 65534;
    return ::getuid() != kNobody && ::lchown(QFile::encodeName(path).constData(), kNobody, kNobody) == 0;
}

QStringList CleanFixture::relative(const QList<CleanItem>& items) const
{
    QStringList paths;
    for (const CleanItem& item : items) {
        const std::optional<QString> url = item.url();
        paths << (url ? url->mid(m_base.path().size() + 1) : item.id);
    }
    return paths;
}

} // namespace nubo::testing
