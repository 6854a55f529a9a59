#pragma once

#include "core/files/SystemRoots.h"
#include "core/safety/Safety.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace nubo::testing {

// A home folder, a system Library and a per-user temporary folder inside one temporary tree,
// shaped like a Mac's, with the Safety gate built over them.
class SafetyFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_base.isValid());
        for (const char* folder :
             {"home/Library/Caches/com.example", "home/Library/Mail/V10", "home/Library/Mobile Documents",
              "home/Library/Application Support/com.apple.TCC",
              "home/Library/Developer/Xcode/DerivedData/Foo-abc",
              "home/Library/Containers/com.apple.mail/Data/Library/Mail Downloads", "home/Library/Existing",
              "home/Pictures/Photos Library.photoslibrary/media", "home/Projects/app", "Library/Caches",
              "Library/Apple/x", "tmp-user/T"}) {
            ASSERT_TRUE(QDir(m_base.path()).mkpath(QString::fromUtf8(folder)));
        }
        m_roots = SystemRoots{base(QStringLiteral("home")), base(QStringLiteral("Library")),
                              base(QStringLiteral("tmp-user/T/"))};
        m_safety = std::make_unique<Safety>(m_roots, SafetyRules::forMac());
    }

    QString base(const QString& relative) const { return m_base.path() + QLatin1Char('/') + relative; }
    QString home(const QString& relative = {}) const
    {
        return relative.isEmpty() ? m_roots.home : m_roots.home + QLatin1Char('/') + relative;
    }

    void link(const QString& target, const QString& at) const { nubo::test::makeLink(target, at); }

    ::testing::AssertionResult denied(const QString& path, const char* reason) const
    {
        const Verdict verdict = m_safety->check(path);
        if (verdict == Verdict::denied(QString::fromUtf8(reason)))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << path.toStdString() << " gave "
               << (verdict.isAllowed() ? "allowed" : verdict.reason().toStdString()) << ", expected "
               << reason;
    }

    ::testing::AssertionResult allowed(const QString& path) const
    {
        const Verdict verdict = m_safety->check(path);
        if (verdict.isAllowed())
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << path.toStdString() << " was denied: " << verdict.reason().toStdString();
    }

    QTemporaryDir m_base;
    SystemRoots m_roots;
    std::unique_ptr<Safety> m_safety;
};

} // namespace nubo::testing
