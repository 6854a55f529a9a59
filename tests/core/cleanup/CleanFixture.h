#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"
#include "core/naming/Naming.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "platform/fake/FakeWorkspace.h"
#include "platform/fake/ScriptedToolRunner.h"
#include "support/FixtureFiles.h"
#include "support/OrdinaryUser.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <atomic>
#include <fcntl.h>
#include <initializer_list>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo::testing {

// A home folder shaped like a Mac's, a system Library, a per-user temporary folder and a stand-in
// for the shared "/private/tmp", all inside one temporary tree, with real safety and privacy
// gates, naming over a fake application registry and a scripted tool runner. Full Disk Access is
// granted unless a test takes it away.
class CleanFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_base.isValid());
        for (const char* path : {"home/Library/Caches", "home/Library/Logs", "home/Downloads", "home/.Trash",
                                 "Library/Caches", "tmp-user/T", "shared-tmp"})
            folder(QString::fromUtf8(path));
        m_roots = SystemRoots{base(QStringLiteral("home")), base(QStringLiteral("Library")),
                              base(QStringLiteral("tmp-user/T"))};
        m_safety = std::make_unique<Safety>(m_roots, SafetyRules::forMac());
        m_privacy = std::make_unique<Privacy>(m_roots.home, [this] { return m_fullDiskAccess.load(); });
        m_naming = std::make_unique<Naming>(Naming::lookupIn(m_workspace));
        m_context = std::make_unique<CleanContext>(*m_safety, *m_privacy, *m_naming, m_tools, m_roots);
        m_context->sharedTemporaries = QStringList{base(QStringLiteral("shared-tmp"))};
    }

    QString base(const QString& relative) const { return m_base.path() + QLatin1Char('/') + relative; }
    QString home(const QString& relative) const { return base(QStringLiteral("home/") + relative); }
    /// Writes `bytes` bytes at `relative` under the base, creating its folders; returns the path.
    QString file(const QString& relative, qint64 bytes = 8192) const
    {
        return test::writeFile(base(relative), bytes), base(relative);
    }
    QString folder(const QString& relative) const { return test::makeDir(base(relative)), base(relative); }
    void grantFullDiskAccess(bool granted)
    {
        m_fullDiskAccess = granted;
        m_privacy->refresh();
    }

    /// Sets the last access and the last change of `path` (not through links) so many days ago.
    static void age(const QByteArray& path, double accessDays, double changeDays)
    {
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        const timespec stamps[2] = {{time_t(now - qint64(accessDays * 86400)), 0},
                                    {time_t(now - qint64(changeDays * 86400)), 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.constData(), stamps, AT_SYMLINK_NOFOLLOW), 0) << path.constData();
    }
    static void age(const QString& path, double days) { age(QFile::encodeName(path), days, days); }
    /// Gives `path` to another user; false when this process may not.
    static bool giveAway(const QString& path)
    {
        return ::getuid() != test::kNobody &&
               ::lchown(QFile::encodeName(path).constData(), test::kNobody, test::kNobody) == 0;
    }
    /// Paths of `items` relative to the base, in order; command items give their id.
    QStringList relative(const QList<CleanItem>& items) const
    {
        QStringList paths;
        for (const CleanItem& item : items)
            paths << (item.url() ? item.url()->mid(m_base.path().size() + 1) : item.id);
        return paths;
    }
    /// Each of `paths` (UTF-8) after `prefix`.
    static QStringList list(std::initializer_list<const char*> paths, const char* prefix = "")
    {
        QStringList result;
        for (const char* path : paths)
            result << QString::fromUtf8(prefix) + QString::fromUtf8(path);
        return result;
    }

    QTemporaryDir m_base;
    SystemRoots m_roots;
    std::atomic<bool> m_fullDiskAccess{true};
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<Privacy> m_privacy;
    FakeWorkspace m_workspace;
    std::unique_ptr<Naming> m_naming;
    nubo::ScriptedToolRunner m_tools;
    std::unique_ptr<CleanContext> m_context;
};

} // namespace nubo::testing
