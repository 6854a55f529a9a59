#pragma once

// A temporary machine for the application catalogue: its own home, Library, applications
// folders and temporary folder, with real bundles and real property lists in them.

#include "core/apps/AppCatalog.h"
#include "core/files/SystemRoots.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "platform/fake/FakeMetadata.h"
#include "platform/fake/FakeWorkspace.h"
#include "support/Column.h"
#include "support/FixtureFiles.h"
#include "support/PlistWriter.h"
#include "support/TempTree.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <gtest/gtest.h>
#include <memory>

namespace nubo::test {

class AppTree : public ::testing::Test
{
protected:
    AppTree()
    {
        const QString base = m_tree.root();
        roots.home = base + QStringLiteral("/Users/ana");
        roots.library = base + QStringLiteral("/Library");
        roots.temporary = base + QStringLiteral("/tmp");
        roots.applications = base + QStringLiteral("/Applications");
        roots.systemApplications = base + QStringLiteral("/System/Applications");
        for (const QString& folder : {roots.home, roots.library, roots.temporary, roots.applications})
            QDir().mkpath(folder);
    }

    /// Absolute path of a fixture path: "~/" is the home, "/" the fixture's root.
    QString at(const QString& path) const
    {
        return path.startsWith(QLatin1String("~/")) ? roots.home + path.mid(1) : m_tree.root() + path;
    }
    QString folder(const QString& path) const { return makeDir(at(path)), at(path); }
    QString file(const QString& path, qint64 bytes = 1000) const { return writeFile(at(path), bytes), at(path); }
    QString rawFile(const QString& path, const QByteArray& content) const
    {
        return writeBytes(at(path), content), at(path);
    }
    /// A symbolic link at `path` to `target`, both fixture paths.
    void link(const QString& target, const QString& path) const { makeLink(at(target), at(path)); }

    /// A bundle with an information dictionary in the given format and an executable inside.
    QString bundle(const QString& path, const QVariantMap& info, PlistFormat format = PlistFormat::xml) const
    {
        rawFile(path + QStringLiteral("/Contents/Info.plist"), plistBytes(info, format));
        file(path + QStringLiteral("/Contents/MacOS/binary"), 4096);
        return at(path);
    }
    QString app(const QString& path, const QString& identifier, PlistFormat format = PlistFormat::xml) const
    {
        return bundle(path, {{QStringLiteral("CFBundleIdentifier"), identifier}}, format);
    }
    /// A path whose last name is raw bytes that are not UTF-8.
    QByteArray nativePath(const QString& parent, const QByteArray& name) const
    {
        return QFile::encodeName(folder(parent)) + '/' + name;
    }

    /// The catalogue over this tree. Safety lists the Library when first asked, so build the tree
    /// before calling this.
    AppCatalog& catalog()
    {
        if (!m_catalog) {
            m_privacy = std::make_unique<Privacy>(roots.home, [this] { return fullDiskAccess; });
            m_safety = std::make_unique<Safety>(roots, SafetyRules::forMac());
            m_catalog = std::make_unique<AppCatalog>(roots, *m_safety, *m_privacy, workspace, metadata);
        }
        return *m_catalog;
    }

    static QStringList paths(const QList<CleanItem>& items) { return test::column(items, &CleanItem::id); }
    static QStringList sorted(QStringList list) { return list.sort(), list; }

    /// What every list of items must hold: no path twice, nothing the safety gate refuses, largest
    /// first, and no subtitle or application link (the app is the one being looked at, or gone).
    void expectSoundItems(const QList<CleanItem>& items)
    {
        catalog();
        const QStringList list = paths(items);
        EXPECT_EQ(QSet<QString>(list.cbegin(), list.cend()).size(), list.size()) << list.join(u'\n').toStdString();
        for (qsizetype i = 0; i < items.size(); ++i) {
            const CleanItem& item = items.at(i);
            EXPECT_TRUE(m_safety->isAllowed(item.id) && item.url() == item.id) << item.id.toStdString();
            EXPECT_FALSE(item.subtitle || item.appURL) << item.id.toStdString();
            EXPECT_GE(items.at(i > 0 ? i - 1 : 0).size, item.size);
        }
    }

    TempTree m_tree; // removed by its bytes, names that are not UTF-8 included
    SystemRoots roots;
    FakeWorkspace workspace;
    FakeMetadata metadata;
    bool fullDiskAccess = true;

private:
    std::unique_ptr<Privacy> m_privacy;
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<AppCatalog> m_catalog;
};

} // namespace nubo::test
