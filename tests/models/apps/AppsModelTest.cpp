#include "models/apps/AppsModel.h"

#include "../support/ModelWorld.h"
#include "support/Column.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTimeZone>
#include <QTest>
#include <algorithm>
#include <tuple>
#include <fcntl.h>
#include <sys/stat.h>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

QStringList names(const QList<InstalledApp>& list)
{
    return test::column(list, &InstalledApp::name);
}

// Three applications: one used last week, one used long ago whose name has an accent, and one in
// the user's own folder that was never opened; the first left data in the Library.
class AppsModelTest : public ModelWorld
{
protected:
    void SetUp() override
    {
        ModelWorld::SetUp();
        bundle(u"Applications/Writer.app"_s, u"com.acme.writer"_s, 300'000);
        bundle(u"Applications/Café Studio.app"_s, u"com.cafe.studio"_s, 900'000);
        bundle(u"home/Applications/Zeta.app"_s, u"org.zeta"_s, 100'000);
        file(u"home/Library/Preferences/com.acme.writer.plist"_s, 2000);
        file(u"home/Library/Caches/com.acme.writer/blob"_s, 30'000);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        m_metadata.lastUsed.insert(writer(), now.addDays(-7));
        m_metadata.lastUsed.insert(path(u"Applications/Café Studio.app"_s), now.addDays(-200));
        // Zeta was never opened: only its access date, two years old, speaks for it.
        const timespec old[2] = {{now.addDays(-730).toSecsSinceEpoch(), 0}, {now.toSecsSinceEpoch(), 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path(u"home/Applications/Zeta.app"_s)).constData(), old,
                              AT_SYMLINK_NOFOLLOW),
                  0);
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    }
    void TearDown() override
    {
        ModelWorld::TearDown();
        QLocale::setDefault(QLocale::c());
    }

    AppsModel& apps() { return *state().apps(); }
    QString writer() const { return path(u"Applications/Writer.app"_s); }
    void runningWriter() { m_workspace.running = {{4242, u"Writer"_s, writer(), false, false, true}}; }

    void loadAndMeasure()
    {
        apps().load();
        ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
    }

    void selectWriter()
    {
        apps().select(writer());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().leftoversLoading(); }, 10000));
        ASSERT_EQ(apps().leftovers().size(), 2);
    }

    void uninstallAndWait()
    {
        apps().uninstall();
        EXPECT_TRUE(apps().isRemoving());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().isRemoving(); }, 15000));
    }

    // The Writer's cache folder among its leftovers.
    CleanItem cache()
    {
        const auto found = std::ranges::find_if(apps().leftovers(),
                                                [](const CleanItem& item) { return item.id.endsWith(u"com.acme.writer"_s); });
        EXPECT_TRUE(found != apps().leftovers().end());
        return found == apps().leftovers().end() ? apps().leftovers().front() : *found;
    }
};

} // namespace

// What the search and each order pick is proven on arrange() below; here the model loads once,
// takes only its three orders, and its visible list follows the query.
TEST_F(AppsModelTest, TheFirstVisitLoadsTheListOnceAndItsSizesFollowInTheBackground)
{
    QSignalSpy loading(&apps(), &AppsModel::isLoadingChanged);
    apps().enter();
    EXPECT_TRUE(apps().isLoading());
    EXPECT_TRUE(state().isAnalyzing());
    EXPECT_EQ(apps().headerLine(), u"Buscando…"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().isLoading(); }, 10000));
    EXPECT_EQ(names(apps().apps()), (QStringList{u"Café Studio"_s, u"Writer"_s, u"Zeta"_s}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
    for (const InstalledApp& app : apps().apps())
        EXPECT_GE(app.size.value_or(0), 100'000) << app.name.toStdString();
    EXPECT_FALSE(state().isAnalyzing());
    apps().enter();
    QTest::qWait(50);
    EXPECT_EQ(loading.count(), 2) << "a later visit must not list the applications again";

    QSignalSpy sort(&apps(), &AppsModel::sortChanged);
    apps().chooseSort(-1);
    apps().chooseSort(3);
    EXPECT_EQ(sort.count(), 0);
    apps().chooseSort(2);
    EXPECT_EQ(std::tuple(apps().sort(), apps().sortTitle()),
              std::tuple(AppsModel::Sort::LastUse, u"Ordenar por Último uso"_s));
    // The header counts every application, whatever the search shows.
    apps().setQuery(u"cafe"_s);
    EXPECT_EQ(names(apps().visible()), QStringList{u"Café Studio"_s});
    EXPECT_EQ(apps().headerLine(), u"3 instaladas"_s);
    apps().setQuery(u"nada"_s);
    EXPECT_TRUE(apps().visible().isEmpty());
}

TEST_F(AppsModelTest, TheBundleLeadsTheRemovalCannotBeUntickedAndUntickingALeftoverLowersTheSize)
{
    loadAndMeasure();
    EXPECT_TRUE(apps().removalRows().isEmpty());
    selectWriter();
    EXPECT_FALSE(apps().selectedRunning());
    const QVariantList rows = apps().removalRows();
    ASSERT_EQ(rows.size(), 3);
    const QVariantMap bundle = rows.front().toMap();
    EXPECT_EQ(std::tuple(bundle.value(u"id"_s).toString(), bundle.value(u"label"_s).toString(),
                         bundle.value(u"locked"_s).toBool()),
              std::tuple(writer(), u"Aplicación"_s, true));
    EXPECT_EQ(std::tuple(apps().removalItems().front().url(), apps().removalItems().front().size),
              std::tuple(writer(), apps().selected()->size.value()));
    for (const QVariant& row : rows.mid(1)) {
        EXPECT_FALSE(row.toMap().value(u"locked"_s).toBool());
        EXPECT_TRUE(row.toMap().value(u"ticked"_s).toBool());
    }

    const qint64 all = apps().removalSize();
    QSignalSpy removal(&apps(), &AppsModel::removalChanged);
    apps().toggle(writer());
    apps().toggle(u"/not/a/leftover"_s);
    EXPECT_EQ(std::tuple(removal.count(), apps().removalSize()), std::tuple(0, all));
    const CleanItem cached = cache();
    apps().toggle(cached.id);
    EXPECT_EQ(apps().removalSize(), all - cached.size);
    EXPECT_EQ(apps().removalItems().front().id, writer());
    apps().toggle(cached.id);
    EXPECT_EQ(std::tuple(removal.count(), apps().removalSize()), std::tuple(2, all));
    // Unticking every leftover leaves the bundle alone.
    for (const CleanItem& item : apps().leftovers())
        apps().toggle(item.id);
    EXPECT_EQ(std::tuple(apps().removalCount(), apps().removalSize()),
              std::tuple(1, apps().selected()->size.value()));

    // Whether the detail's app runs is looked at again; choosing nothing known empties the detail.
    runningWriter();
    apps().refreshRunning();
    EXPECT_TRUE(apps().selectedRunning());
    apps().select(u"/Applications/Gone.app"_s);
    EXPECT_TRUE(apps().selectedApp().isEmpty());
    EXPECT_FALSE(apps().selectedRunning());
    EXPECT_TRUE(apps().removalRows().isEmpty());
}

// A copy that quits but stays listed as ended is not waited for: with a wait of a million looks,
// only its ended flag lets the removal go ahead.
TEST_F(AppsModelTest, UninstallGoesAheadOnceTheRunningCopyHasEnded)
{
    m_services->quitPolls = 1'000'000;
    m_quitStaysListed = true;
    loadAndMeasure();
    runningWriter();
    selectWriter();
    uninstallAndWait();
    EXPECT_EQ(m_quitRequests.load(), 1);
    EXPECT_FALSE(exists(u"Applications/Writer.app"_s));
}

// A copy that will not quit is still asked once and removed after the wait: an obedient copy
// takes the same path, only sooner.
TEST_F(AppsModelTest, UninstallAsksARunningCopyToQuitDeletesAndDropsTheApp)
{
    loadAndMeasure();
    m_quitObeys = false;
    runningWriter();
    selectWriter();
    EXPECT_TRUE(apps().selectedRunning());
    apps().toggle(cache().id);
    const qint64 expected = apps().removalSize();
    QSignalSpy toasts(&state(), &AppState::toastChanged);
    uninstallAndWait();
    EXPECT_EQ(m_quitRequests.load(), 1);
    EXPECT_FALSE(exists(u"Applications/Writer.app"_s));
    EXPECT_FALSE(exists(u"home/Library/Preferences/com.acme.writer.plist"_s));
    EXPECT_TRUE(exists(u"home/Library/Caches/com.acme.writer/blob"_s));
    EXPECT_EQ(toasts.count(), 1);
    EXPECT_EQ(std::tuple(state().toast()->freed, state().toast()->failures), std::tuple(expected, 0));
    EXPECT_EQ(names(apps().apps()), (QStringList{u"Café Studio"_s, u"Zeta"_s}));
    EXPECT_TRUE(apps().selection().isEmpty());
    EXPECT_TRUE(apps().leftovers().isEmpty());
    EXPECT_TRUE(apps().excluded().isEmpty());
}

TEST_F(AppsModelTest, AnAppWhoseBundleCannotBeDeletedStaysListed)
{
    loadAndMeasure();
    selectWriter();
    if (!pin(u"Applications/Writer.app/Contents/MacOS/binary"_s))
        GTEST_SKIP() << "this file system cannot make a file undeletable";
    m_admin.outcome = AdminOutcome::Failed;
    uninstallAndWait();
    EXPECT_EQ(m_quitRequests.load(), 0); // it was not running
    EXPECT_TRUE(exists(u"Applications/Writer.app"_s));
    EXPECT_EQ(std::tuple(state().toast()->failures, apps().apps().size(), apps().selection()),
              std::tuple(1, 3, writer()));
}

TEST(AppsOrder, AnUnknownLastUseIsTheDistantPastAndSystemAppsAreNeverUnused)
{
    const QDateTime now = QDateTime::fromSecsSinceEpoch(2000000000, QTimeZone::utc());
    const auto app = [](const char* url, std::optional<QDateTime> used, qint64 size) {
        InstalledApp made;
        made.url = QString::fromUtf8(url);
        made.name = made.url.section(QLatin1Char('/'), -1).chopped(4);
        made.lastUsed = std::move(used);
        made.size = size;
        return made;
    };
    const QList<InstalledApp> list{
        app("/Applications/Alpha.app", std::nullopt, 10),
        app("/System/Applications/Beta.app", std::nullopt, 30),
        app("/Applications/Gamma.app", now.addSecs(-AppsModel::unusedAfterSeconds), 30),
        app("/Applications/Delta.app", now.addSecs(-AppsModel::unusedAfterSeconds - 1), 20),
    };
    const auto joined = [](const QList<InstalledApp>& apps) { return names(apps).join(u' '); };
    EXPECT_EQ(joined(AppsModel::arrange(list, {}, AppsModel::Sort::LastUse)), QStringLiteral("Gamma Delta Alpha Beta"));
    // Equal sizes keep the name order they came in.
    EXPECT_EQ(joined(AppsModel::arrange(list, {}, AppsModel::Sort::Size)), QStringLiteral("Beta Gamma Delta Alpha"));
    EXPECT_EQ(joined(AppsModel::arrange(list, QStringLiteral("ALP"), AppsModel::Sort::Name)), QStringLiteral("Alpha"));
    // Exactly 90 days is not yet unused; a second more is.
    EXPECT_EQ(joined(AppsModel::unusedOf(list, now)), QStringLiteral("Alpha Delta"));
}

namespace {

// A Linux desktop with a Flatpak of the user's and a distribution package, each with data in
// the home; the package manager answers as apt-get and dpkg-query really do.
class LinuxAppsModelTest : public ModelWorld
{
protected:
    LinuxAppsModelTest() { m_system = HostSystem::Linux; }
    void SetUp() override
    {
        ModelWorld::SetUp();
        m_desktop->flatpak(u"org.gnome.Maps"_s, u"Mapas"_s, false);
        file(u"home/.var/app/org.gnome.Maps/data"_s, 8'000);
        const QString entry = m_desktop->entry(m_desktop->systemData(), u"obconf.desktop"_s, u"Name=Obconf\nExec=obconf"_s);
        file(u"home/.config/obconf/rc.xml"_s, 3'000);
        m_desktop->tool(u"flatpak"_s);
        m_tools.answer(m_desktop->tool(u"dpkg-query"_s), {u"-S"_s, entry}, {0, u"obconf: "_s + entry});
        m_tools.answer(m_desktop->tool(u"apt-get"_s), {u"-s"_s, u"remove"_s, u"obconf"_s},
                       {0, u"The following packages will be REMOVED:\n  obconf\nRemv obconf [1:2.0.4]\n"_s});
    }

    AppsModel& apps() { return *state().apps(); }
    void choose(const QString& name)
    {
        apps().load();
        ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
        const auto found = std::ranges::find(apps().apps(), name, &InstalledApp::name);
        ASSERT_NE(found, apps().apps().end());
        apps().select(found->url);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().leftoversLoading(); }, 10000));
    }
};

} // namespace

// The packaging removes the application first; its data goes only once it has, and a removal
// the packaging or the administrator refused leaves every file where it was.
TEST_F(LinuxAppsModelTest, ThePackagingRemovesTheAppFirstAndItsDataOnlyGoesOnceItHas)
{
    const struct
    {
        const char* app;
        bool succeeds;
        const char* data;
        QString detail;
        QStringList adminLines;
    } cases[] = {
        {"Mapas", false, "home/.var/app/org.gnome.Maps", u"flatpak uninstall org.gnome.Maps"_s, {}},
        {"Mapas", true, "home/.var/app/org.gnome.Maps", u"flatpak uninstall org.gnome.Maps"_s, {}},
        {"Obconf", false, "home/.config/obconf", u"apt-get remove obconf"_s,
         {u"'"_s + m_desktop->at(u"tools/apt-get' 'remove' '-y' 'obconf'"_s)}},
        {"Obconf", true, "home/.config/obconf", u"apt-get remove obconf"_s,
         {u"'"_s + m_desktop->at(u"tools/apt-get' 'remove' '-y' 'obconf'"_s)}},
    };
    for (const auto& step : cases) {
        SCOPED_TRACE(std::string(step.app) + (step.succeeds ? " removed" : " refused"));
        m_commandsRun.clear();
        m_failingCommands = step.succeeds ? QStringList() : QStringList{m_desktop->flatpakExports(false) +
                                                                        u"/applications/org.gnome.Maps.desktop"_s};
        m_adminSucceeds = step.succeeds;
        choose(QString::fromUtf8(step.app));
        EXPECT_EQ(apps().removalRows().value(0).toMap().value(u"detail"_s).toString(), step.detail);
        EXPECT_EQ(apps().removalCount(), 2);
        const qsizetype adminBefore = adminCommands().size();
        apps().uninstall();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().isRemoving(); }, 15000));
        EXPECT_EQ(adminCommands().mid(adminBefore), step.adminLines);
        EXPECT_EQ(m_commandsRun.size(), step.adminLines.isEmpty() ? 1 : 0);
        EXPECT_EQ(exists(QString::fromUtf8(step.data)), !step.succeeds);
        EXPECT_EQ(state().toast()->failures, step.succeeds ? 0 : 1);
    }
}
