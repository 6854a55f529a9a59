#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"
#include "core/naming/Naming.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "platform/fake/FakeWorkspace.h"
#include "platform/fake/ScriptedToolRunner.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <atomic>
#include <initializer_list>
#include <memory>

namespace nubo::testing {

// A home folder shaped like a Mac's, a system Library, a per-user temporary folder and a stand-in
// for the shared "/private/tmp", all inside one temporary tree, with real safety and privacy
// gates, naming over a fake application registry and a scripted tool runner. Full Disk Access is
// granted unless a test takes it away.
class CleanFixture : public ::testing::Test
{
protected:
    void SetUp() override;

    /// Writes `bytes` bytes of data at `relative` under the base, creating its folders.
    QString file(const QString& relative, qint64 bytes = 8192) const;
    /// Creates the folder `relative` under the base.
    QString folder(const QString& relative) const;
    /// Sets both the last access and the last change of `path` (not through links) `days` ago.
    void age(const QString& path, double days) const;
    /// Gives `path` to another user; false when this process may not.
    bool giveAway(const QString& path) const;
    /// Paths of `items` relative to the base, in order; command items give their id.
    QStringList relative(const QList<CleanItem>& items) const;

    /// Literal paths as a list, for comparing with `relative`.
    static QStringList list(std::initializer_list<const char*> paths)
    {
        QStringList result;
        for (const char* path : paths)
            result << QString::fromUtf8(path);
        return result;
    }

    QString base(const QString& relative) const { return m_base.path() + QLatin1Char('/') + relative; }
    QString home(const QString& relative) const { return base(QStringLiteral("home/") + relative); }

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
