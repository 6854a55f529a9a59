#include "AppFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <tuple>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

class InstalledApps : public AppTree
{
protected:
    QStringList names() { return column(catalog().load(), &InstalledApp::name); }
};

struct Described
{
    const char* path;
    QByteArray info; // the Info.plist's bytes
    const char* name;
    const char* identifier = nullptr;
    const char* version = nullptr;
};

std::optional<QString> text(const char* value)
{
    return value ? std::optional(QString::fromUtf8(value)) : std::nullopt;
}

} // namespace

// Two levels down but not three, nor inside bundles, nor through links, nor other cases of ".app",
// bundles without usable information included, sorted by name ignoring case, the copy in
// "/Applications" first on a tie.
TEST_F(InstalledApps, ListsBundlesTwoLevelsDownSortedByName)
{
    QDir(roots.applications).removeRecursively(); // missing roots give nothing
    EXPECT_TRUE(names().isEmpty());
    app(u"/Applications/Top.app"_s, u"com.acme.top"_s);
    app(u"/Applications/Suite/Nested.app"_s, u"com.acme.nested"_s);
    app(u"/Applications/A/B/TooDeep.app"_s, u"com.acme.deep"_s);
    app(u"/Applications/Upper.APP"_s, u"com.acme.upper"_s);
    app(u"/Applications/.Hidden.app"_s, u"com.acme.hidden"_s);
    app(u"/Applications/Top.app/Contents/Helpers/Helper.app"_s, u"com.acme.top.helper"_s);
    link(u"/Applications/Top.app"_s, u"/Applications/Alias.app"_s);
    link(u"/Applications/Suite"_s, u"/Applications/Linked"_s);
    rawFile(u"/Applications/Broken.app/Contents/Info.plist"_s, "garbage");
    app(u"/Applications/banana.app"_s, u"com.x.banana"_s);
    app(u"~/Applications/Apple.app"_s, u"com.x.apple.user"_s);
    app(u"/Applications/Apple.app"_s, u"com.x.apple"_s);
    // A name that is not UTF-8 cannot be held as text without changing it: listing it would offer
    // to remove a path that does not exist, so it is not listed, and it is not touched.
    const QByteArray odd = nativePath(u"/Applications"_s, "Caf\xe9.app");
    makeDir(odd);

    const QList<InstalledApp> apps = catalog().load();
    EXPECT_EQ(column(apps, &InstalledApp::name), (QStringList{u"Apple"_s, u"Apple"_s, u"banana"_s, u"Broken"_s,
                                                              u"Nested"_s, u"Top"_s}));
    EXPECT_EQ(column(apps, &InstalledApp::url).mid(0, 2),
              (QStringList{at(u"/Applications/Apple.app"_s), at(u"~/Applications/Apple.app"_s)}));
    EXPECT_TRUE(exists(odd));
}

// The file name wins over every declared name, which only serve a bundle named ".app" alone; the
// identifier keeps its case; information that is malformed, cut short, of the wrong shape or type
// gives none.
TEST_F(InstalledApps, DescribesEachBundleFromItsInformation)
{
    const QVariantMap writer{{u"CFBundleIdentifier"_s, u"com.Acme.Writer"_s},
                             {u"CFBundleDisplayName"_s, u"Bar"_s},
                             {u"CFBundleShortVersionString"_s, u"2.1"_s}};
    const QVariantMap shown{{u"CFBundleDisplayName"_s, u"Shown"_s}, {u"CFBundleName"_s, u"Plain"_s}};
    const QVariantMap plain{{u"CFBundleName"_s, u"Plain"_s}, {u"CFBundleDisplayName"_s, qint64(3)}};
    const QVariantMap numeric{{u"CFBundleIdentifier"_s, qint64(12345)}};
    const QVariantList listy{u"CFBundleIdentifier"_s, u"com.x"_s};
    const QByteArray whole = plistBytes(
        QVariantMap{{u"CFBundleIdentifier"_s, u"com.acme.cut"_s}, {u"CFBundleShortVersionString"_s, u"1"_s}},
        PlistFormat::binary);
    // clang-format off
    const Described rows[] = {
        {"/Applications/Foo.app", plistBytes(writer, PlistFormat::xml), "Foo", "com.Acme.Writer", "2.1"},
        {"/Applications/Baz.app", plistBytes(writer, PlistFormat::binary), "Baz", "com.Acme.Writer", "2.1"},
        {"/Elsewhere/.app", plistBytes(shown, PlistFormat::xml), "Shown"},
        {"/Elsewhere2/.app/", plistBytes(plain, PlistFormat::xml), "Plain"},
        {"/Applications/Dotted.Name.app", QByteArray(), "Dotted.Name"}, // an empty Info.plist
        {"/Applications/Broken.app", QByteArray("bplist00\x01\x02garbage", 17), "Broken"},
        {"/Applications/Cut.app", whole.left(whole.size() - 5), "Cut"},
        {"/Applications/Listy.app", plistBytes(listy, PlistFormat::binary), "Listy"},
        {"/Applications/NumericId.app", plistBytes(numeric, PlistFormat::binary), "NumericId"},
    };
    // clang-format on
    for (const Described& row : rows) {
        SCOPED_TRACE(row.path);
        rawFile(QString::fromUtf8(row.path) + u"/Contents/Info.plist"_s, row.info);
        const std::optional<InstalledApp> app = catalog().describe(at(QString::fromUtf8(row.path)));
        ASSERT_TRUE(app);
        EXPECT_EQ(std::tuple(app->name, app->bundleID, app->version, app->isStore, app->size),
                  std::tuple(QString::fromUtf8(row.name), text(row.identifier), text(row.version), false,
                             std::optional<qint64>()));
    }
    folder(u"/Applications/Bare.app/Contents"_s); // no Info.plist at all
    EXPECT_EQ(catalog().describe(at(u"/Applications/Bare.app"_s))->name, u"Bare"_s);
    // Only a receipt file marks a store app, whatever it holds; an empty receipt folder does not.
    rawFile(u"/Applications/Store.app/Contents/_MASReceipt/receipt"_s, "not a real receipt");
    folder(u"/Applications/Almost.app/Contents/_MASReceipt"_s);
    EXPECT_TRUE(catalog().describe(at(u"/Applications/Store.app"_s))->isStore);
    EXPECT_FALSE(catalog().describe(at(u"/Applications/Almost.app"_s))->isStore);
}

TEST_F(InstalledApps, LastUseComesFromMetadataThenFromTheAccessDate)
{
    const QString indexed = app(u"/Applications/Indexed.app"_s, u"com.x.indexed"_s);
    const QString opened = app(u"/Applications/Opened.app"_s, u"com.x.opened"_s);
    const QDateTime spotlight = QDateTime::fromSecsSinceEpoch(1'600'000'000);
    metadata.lastUsed.insert(indexed, spotlight);
    const timespec times[2] = {{1'500'000'000, 0}, {1'400'000'000, 0}}; // access, modification
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(opened).constData(), times, AT_SYMLINK_NOFOLLOW), 0);

    EXPECT_EQ(catalog().describe(indexed)->lastUsed, spotlight);
    EXPECT_EQ(catalog().describe(opened)->lastUsed, QDateTime::fromSecsSinceEpoch(1'500'000'000));
    EXPECT_FALSE(catalog().describe(at(u"/Applications/Gone.app"_s))->lastUsed);
}

TEST_F(InstalledApps, RunningInstanceIsMatchedByLocationNotByIdentifier)
{
    const InstalledApp first = *catalog().describe(app(u"/Applications/Writer.app"_s, u"com.acme.writer"_s));
    const QString second = app(u"~/Applications/Writer.app"_s, u"com.acme.writer"_s);
    const InstalledApp secondApp = *catalog().describe(second);
    const auto pid = [this](const InstalledApp& app) {
        const std::optional<RunningApplication> running = catalog().runningInstance(app);
        return running ? running->pid : -1;
    };

    EXPECT_EQ(pid(first), -1);
    workspace.running = {RunningApplication{10, u"helper"_s, QString(), false, false, false},
                         RunningApplication{11, u"Writer"_s, second + u"/"_s, false, true, true}};
    // Only the other copy runs.
    EXPECT_EQ(std::pair(pid(first), pid(secondApp)), std::pair(qint64(-1), qint64(11)));
    workspace.running << RunningApplication{12, u"Writer"_s, roots.applications + u"/./Other/../Writer.app"_s,
                                            false, false, true};
    EXPECT_EQ(pid(first), 12);
}
