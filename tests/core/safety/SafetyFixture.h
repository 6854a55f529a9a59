#pragma once

#include "core/files/SystemRoots.h"
#include "core/safety/Safety.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <vector>

namespace nubo::testing {

// Paths that must all get one answer from the gate: a reason, or "allowed".
struct ReasonRow
{
    const char* reason;
    std::vector<const char*> paths;
};

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
    // A path as tables write it: a leading "~" stands for the home, "^" for the system Library and
    // "@" for the temporary tree itself; anything else is taken as written.
    QString at(const char* written) const
    {
        const QString text = QString::fromUtf8(written);
        const QString rest = text.mid(1);
        switch (written[0]) {
        case '~':
            return m_roots.home + rest;
        case '^':
            return m_roots.library + rest;
        case '@':
            return base(rest);
        default:
            return text;
        }
    }

    void link(const QString& target, const QString& at) const { nubo::test::makeLink(target, at); }

    static QString reasonOf(const Safety& gate, const QString& path)
    {
        const Verdict verdict = gate.check(path);
        return verdict.isAllowed() ? QStringLiteral("allowed") : verdict.reason();
    }

    // Each row's paths get the row's answer under every spelling: trailing or doubled slashes, a
    // "." or an "x/.." detour never change a verdict.
    void expectReasons(const Safety& gate, const std::vector<ReasonRow>& rows) const
    {
        for (const ReasonRow& row : rows) {
            for (const char* written : row.paths) {
                const QString path = at(written);
                QStringList spellings{path};
                for (const char* tail : {"/", "//", "/.", "/./", "/x/..", "/x/../"})
                    spellings << path + QLatin1String(tail);
                if (path.size() > 1)
                    spellings << QString(path).replace(QLatin1Char('/'), QStringLiteral("//"));
                for (const QString& spelling : spellings)
                    EXPECT_EQ(reasonOf(gate, spelling), QString::fromUtf8(row.reason))
                        << spelling.toStdString();
            }
        }
    }

    // A path strictly below `start`, 1 to `depth` components deep. Components join names with
    // every odd character and protected-looking words; separators are "/", "//", "/./" or an
    // "x/../" detour, and a trailing "/" may follow: none of them may move the path out of `start`.
    static QString randomPathBelow(const QString& start, QRandomGenerator& random, int depth = 6)
    {
        static const char* const pieces[] = {
            "a",    "Caches", "Library", "-rf", "x y", "q\"uote", "b\\s",   "n\nl",          "it's",
            "Mail", "ñ",      ".hidden", "...", "tmp", "~",       "  sp  ", "photoslibrary", "\xff\xfe"};
        static const char* const separators[] = {"/", "/", "//", "/./", "/x/../"};
        const auto any = [&random](const auto& list) {
            return QFile::decodeName(list[random.bounded(int(std::size(list)))]);
        };
        QString path = start;
        for (int i = 1 + int(random.bounded(depth)); i > 0; --i) {
            path += any(separators);
            for (int parts = 1 + int(random.bounded(3)); parts > 0; --parts)
                path += any(pieces);
        }
        return random.bounded(4) == 0 ? path + QLatin1Char('/') : path;
    }

    QTemporaryDir m_base;
    SystemRoots m_roots;
    std::unique_ptr<Safety> m_safety;
};

} // namespace nubo::testing
