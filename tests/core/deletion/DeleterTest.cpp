#include "DeletionFixture.h"
#include "core/deletion/Removal.h"
#include "core/files/NativePath.h"
#include "core/shell/Shell.h"
#include "support/AppleScriptText.h"
#include "support/OrdinaryUser.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;

namespace {

QStringList failedPaths(const DeletionResult& result)
{
    QStringList paths;
    for (const DeletionFailure& failure : result.failed)
        paths << failure.path;
    return paths;
}

using DeleterTest = DeletionFixture;

TEST_F(DeleterTest, RemovesFilesFoldersAndLinksButNeverWhatLinksPointTo)
{
    // GIVEN a file, a folder tree holding a link to a folder outside it, a dangling link, a link
    // to a file outside, and a path that does not exist; next to them things that must stay
    file("work/file", 100);
    dir("work/tree/deep/empty");
    file("work/tree/deep/leaf", 5);
    file("keep/precious", 7);
    link(bytes("keep"), "work/tree/to-keep");
    link(bytes("work/gone-long-ago"), "work/dangling");
    link(bytes("keep/precious"), "work/to-precious");
    link(bytes("keep"), "work/slash");
    link(bytes("keep"), "work/dot");
    file("work/sibling");
    const std::set<std::string> before = listing();

    // WHEN all of them are deleted in one batch
    const DeletionResult result = run({{path("work/file"), 4096},
                                       {path("work/tree"), 8192},
                                       {path("work/dangling"), 1},
                                       {path("work/to-precious"), 2},
                                       {path("work/missing"), 1000000},
                                       // The link is what is judged and removed, never its folder.
                                       {path("work/slash/"), 3},
                                       {path("work/dot/."), 4}},
                                      false);

    // THEN everything given is gone in the caller's order, the missing path counts as deleted
    // without freeing anything, and only the given items left the disk
    EXPECT_EQ(result.deleted, (QStringList{path("work/file"), path("work/tree"), path("work/dangling"),
                                           path("work/to-precious"), path("work/missing"),
                                           path("work/slash/"), path("work/dot/.")}));
    EXPECT_TRUE(result.failed.isEmpty());
    EXPECT_EQ(result.freed, 4096 + 8192 + 1 + 2 + 3 + 4);
    EXPECT_EQ(listing(), without(before, {"work/file", "work/tree", "work/dangling", "work/to-precious",
                                          "work/slash", "work/dot"}));
    EXPECT_TRUE(exists("keep/precious"));
}

TEST_F(DeleterTest, DeepTreeGoesWholeEvenWithFewFileDescriptors)
{
    // GIVEN a tree 300 folders deep with files along the way, and a process that may hold only
    // 64 open files (a Mac app gets 256 by default)
    QByteArray relative = "work/deep";
    for (int depth = 0; depth < 300; ++depth) {
        relative += "/d";
        if (depth % 50 == 0)
            file(relative + "/f", 1);
    }
    dir(relative);
    file("work/beside");
    const std::set<std::string> before = listing();
    struct rlimit original = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &original), 0);
    struct rlimit few = original;
    few.rlim_cur = 64;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);

    const DeletionResult result = run({{path("work/deep"), 1}}, false);
    ::setrlimit(RLIMIT_NOFILE, &original);

    EXPECT_TRUE(result.failed.isEmpty())
        << (result.failed.isEmpty() ? "" : result.failed[0].reason.toStdString());
    EXPECT_EQ(result.deleted, QStringList{path("work/deep")});
    EXPECT_EQ(listing(), without(before, {"work/deep"}));
}

TEST_F(DeleterTest, ProtectedPathsAreRefusedWithTheirReasonAndTouched)
{
    // GIVEN the home folder with content, its cache container, and an allowed cache item
    file("home/Library/Caches/item", 3);
    file("home/notes");
    const std::set<std::string> before = listing();

    const DeletionResult result = run({{path("home"), 10},
                                       {path("home/Library/Caches"), 10},
                                       {path("home/Library/Caches/item"), 3},
                                       {path("home/../home"), 10},
                                       {QStringLiteral("relative/path"), 10}},
                                      true);

    ASSERT_EQ(result.failed.size(), 4);
    EXPECT_EQ(result.failed[0], (DeletionFailure{path("home"), QStringLiteral("Carpeta del sistema")}));
    EXPECT_EQ(result.failed[1],
              (DeletionFailure{path("home/Library/Caches"), QStringLiteral("Carpeta del sistema")}));
    EXPECT_EQ(result.failed[2].reason, QStringLiteral("Carpeta del sistema"));
    EXPECT_EQ(result.failed[3],
              (DeletionFailure{QStringLiteral("relative/path"), QStringLiteral("Ruta no válida")}));
    EXPECT_EQ(result.deleted, QStringList{path("home/Library/Caches/item")});
    EXPECT_EQ(result.freed, 3);
    EXPECT_EQ(listing(), without(before, {"home/Library/Caches/item"}));
    EXPECT_TRUE(m_admin.requests().isEmpty());
}

TEST_F(DeleterTest, NameThatIsNotUtf8IsNeverActedOnThroughItsLossyText)
{
    // GIVEN a file whose name is not UTF-8 and a neighbour whose name is the replacement
    // character that the first one's text turns into
    file("work/odd/a\xff");
    file("work/odd/a\xef\xbf\xbd");
    const QString lossy = path("work/odd/a\xff");
    ASSERT_TRUE(lossy.contains(QChar::ReplacementCharacter));
    const std::set<std::string> before = listing();

    const DeletionResult result = run({{lossy, 10}}, true);

    // THEN it is neither reported gone nor is the neighbour removed in its place
    EXPECT_TRUE(result.deleted.isEmpty());
    EXPECT_EQ(result.failed, (QList<DeletionFailure>{{lossy, QStringLiteral("No se pudo borrar")}}));
    EXPECT_EQ(result.freed, 0);
    EXPECT_EQ(listing(), before);
    EXPECT_TRUE(m_admin.requests().isEmpty());
}

TEST_F(DeleterTest, NameThatIsNotUtf8IsRemovedThroughTheScannersExactText)
{
    // GIVEN the same pair, and the text the scanner and the listings give for the odd name,
    // which keeps its bytes
    file("work/odd/a\xff");
    file("work/odd/a\xef\xbf\xbd");
    file("work/odd/a?");
    const QString exact = NativePath::decode(NativePath::encode(path("work/odd")) + "/a\xff");
    ASSERT_TRUE(NativePath::hasEscapedBytes(exact));

    const DeletionResult result = run({{exact, 10}}, false);

    // THEN that file, and only that file, is gone
    EXPECT_EQ(result.deleted, QStringList{exact});
    EXPECT_EQ(result.freed, 10);
    EXPECT_FALSE(exists("work/odd/a\xff"));
    EXPECT_TRUE(exists("work/odd/a\xef\xbf\xbd"));
    EXPECT_TRUE(exists("work/odd/a?"));
}

TEST_F(DeleterTest, FreedAddsLargeSizesExactlyAndIgnoresNegativeOnes)
{
    file("work/a");
    file("work/b");
    file("work/c");
    const qint64 big = std::numeric_limits<qint64>::max() / 2;
    const DeletionResult result =
        run({{path("work/a"), big}, {path("work/c"), -big}, {path("work/b"), big}}, false);
    EXPECT_EQ(result.freed, 2 * big);
    EXPECT_EQ(result.deleted.size(), 3);
}

// ---- rights: an ordinary user facing folders it may not write ----

class DeleterRightsTest : public DeletionFixture
{
protected:
    void SetUp() override
    {
        DeletionFixture::SetUp();
        // "locked" belongs to someone else (root, or read-only for a non-root run); "mine" and
        // its content belong to the ordinary user.
        dir("work/locked/inner");
        file("work/mine/own", 50);
        for (const char* relative : {"work/mine", "work/mine/own"})
            OrdinaryUser::handOver(bytes(relative));
    }

    QList<QByteArray> lockedFolders() const { return {bytes("work/locked"), bytes("work/locked/inner")}; }

    // The privileged shell's stand-in: reads the script as AppleScript would, checks it says
    // the same as the command line, and runs that line with /bin/sh with the rights restored.
    void runAdminCommandsAs(OrdinaryUser& user)
    {
        m_admin.handler = [this, &user](const AdminRequest& request) {
            EXPECT_EQ(shellCommandOf(request.script), request.commandLine);
            const ShellResult shell = user.asAdministrator([&request] {
                return Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), request.commandLine});
            });
            return shell.status == 0 ? AdminOutcome::Succeeded : AdminOutcome::Failed;
        };
    }
};

TEST_F(DeleterRightsTest, WithoutAdminTheSystemsMessageIsTheReason)
{
    file("work/locked/root-file", 20);
    const std::set<std::string> before = listing();

    DeletionResult result;
    {
        OrdinaryUser user(lockedFolders());
        ASSERT_TRUE(user.active()) << "cannot act as an ordinary user here";
        result = run({{path("work/locked/root-file"), 20}, {path("work/mine/own"), 50}}, false);
    }

    EXPECT_EQ(result.failed, (QList<DeletionFailure>{{path("work/locked/root-file"),
                                                      QString::fromLocal8Bit(std::strerror(EACCES))}}));
    EXPECT_EQ(result.deleted, QStringList{path("work/mine/own")});
    EXPECT_EQ(result.freed, 50);
    EXPECT_TRUE(m_admin.requests().isEmpty());
    EXPECT_EQ(listing(), without(before, {"work/mine/own"}));
}

TEST_F(DeleterRightsTest, ItemBehindAFolderThatMayNotBeSearchedIsNotCalledGone)
{
    // GIVEN a file inside a folder the user may not even look into: the system cannot say
    // whether it exists, which must never be read as "already gone"
    dir("work/sealed", 0700);
    file("work/sealed/secret", 9);
    const std::set<std::string> before = listing();

    DeletionResult result;
    {
        OrdinaryUser user({bytes("work/sealed")});
        ASSERT_TRUE(user.active());
        if (::geteuid() != 0)
            ::chmod(bytes("work/sealed").constData(), 0);
        result = run({{path("work/sealed/secret"), 9}}, false);
        if (::geteuid() != 0)
            ::chmod(bytes("work/sealed").constData(), 0755);
    }

    EXPECT_TRUE(result.deleted.isEmpty());
    EXPECT_EQ(result.failed, (QList<DeletionFailure>{{path("work/sealed/secret"),
                                                      QString::fromLocal8Bit(std::strerror(EACCES))}}));
    EXPECT_EQ(result.freed, 0);
    EXPECT_EQ(listing(), before);
}

TEST_F(DeleterRightsTest, OneAdministratorRunForTheWholeBatch)
{
    // GIVEN three items the user may not delete, in two folders, among others it may delete
    file("work/locked/one", 1);
    file("work/locked/inner/two", 2);
    dir("work/locked/inner/three");
    file("work/locked/inner/three/x", 3);
    file("work/locked/stays", 4);
    const std::set<std::string> before = listing();

    DeletionResult result;
    {
        OrdinaryUser user(lockedFolders());
        ASSERT_TRUE(user.active());
        runAdminCommandsAs(user);
        result = run({{path("work/locked/one"), 100},
                      {path("work/mine/own"), 50},
                      {path("work/locked/inner/two"), 200},
                      {path("work/locked/inner/three"), 300}},
                     true);
    }

    // THEN one prompt removed all three; the user's own item went without it
    ASSERT_EQ(m_admin.requests().size(), 1);
    EXPECT_EQ(
        m_admin.requests().first().commandLine,
        QStringLiteral("/bin/rm -rf -- '%1' '%2' '%3'")
            .arg(path("work/locked/one"), path("work/locked/inner/two"), path("work/locked/inner/three")));
    EXPECT_TRUE(result.failed.isEmpty()) << failedPaths(result).join(QLatin1Char(',')).toStdString();
    EXPECT_EQ(result.deleted, (QStringList{path("work/mine/own"), path("work/locked/one"),
                                           path("work/locked/inner/two"), path("work/locked/inner/three")}));
    EXPECT_EQ(result.freed, 650);
    EXPECT_EQ(listing(), without(before, {"work/mine/own", "work/locked/one", "work/locked/inner/two",
                                          "work/locked/inner/three"}));
}

TEST_F(DeleterRightsTest, RefusedPromptMarksEveryQueuedItem)
{
    file("work/locked/one");
    file("work/locked/inner/two");
    const std::set<std::string> before = listing();
    m_admin.outcome = AdminOutcome::Failed;

    DeletionResult result;
    {
        OrdinaryUser user(lockedFolders());
        ASSERT_TRUE(user.active());
        result = run(
            {{path("work/locked/one"), 1}, {path("work/locked/inner/two"), 2}, {path("work/mine/own"), 50}},
            true);
    }

    EXPECT_EQ(m_admin.requests().size(), 1);
    const QString denied = QStringLiteral("Permiso de administrador denegado");
    EXPECT_EQ(result.failed, (QList<DeletionFailure>{{path("work/locked/one"), denied},
                                                     {path("work/locked/inner/two"), denied}}));
    EXPECT_EQ(result.deleted, QStringList{path("work/mine/own")});
    EXPECT_EQ(result.freed, 50);
    EXPECT_EQ(listing(), without(before, {"work/mine/own"}));
}

TEST_F(DeleterRightsTest, AdministratorRunThatLeavesItemsBehindIsReportedPerItem)
{
    // GIVEN a runner that reports success (or could not even start the script) but removes nothing
    file("work/locked/one");
    const std::set<std::string> before = listing();
    for (const AdminOutcome outcome : {AdminOutcome::Succeeded, AdminOutcome::Unavailable}) {
        m_admin.outcome = outcome;
        DeletionResult result;
        {
            OrdinaryUser user(lockedFolders());
            ASSERT_TRUE(user.active());
            result = run({{path("work/locked/one"), 1}}, true);
        }
        EXPECT_EQ(result.failed,
                  (QList<DeletionFailure>{{path("work/locked/one"), QStringLiteral("No se pudo borrar")}}));
        EXPECT_EQ(result.freed, 0);
        EXPECT_EQ(listing(), before);
    }
}

TEST_F(DeleterRightsTest, OddNamesReachThePrivilegedRemovalIntact)
{
    // GIVEN names with a double quote, a backslash, a single quote, a newline, a leading "-",
    // spaces and shell syntax, each next to a look-alike that must stay
    const QList<QByteArray> names{"say \"hi\"",
                                  "back\\slash",
                                  "it's",
                                  "new\nline",
                                  "-rf",
                                  "two  spaces ",
                                  "$(touch pwned) `touch pwned2`",
                                  "*",
                                  "\\\"",
                                  "ñandú"};
    QList<DeletionItem> items;
    std::set<std::string> removed;
    for (const QByteArray& name : names) {
        file("work/locked/" + name, 1);
        file("work/locked/" + name + ".keep", 1);
        items.append({path("work/locked/" + name), 1});
        removed.insert(("work/locked/" + name).toStdString());
    }
    const std::set<std::string> before = listing();

    DeletionResult result;
    {
        OrdinaryUser user(lockedFolders());
        ASSERT_TRUE(user.active());
        runAdminCommandsAs(user);
        result = run(items, true);
    }

    EXPECT_EQ(m_admin.requests().size(), 1);
    EXPECT_TRUE(result.failed.isEmpty()) << failedPaths(result).join(QLatin1Char(',')).toStdString();
    EXPECT_EQ(result.deleted.size(), names.size());
    EXPECT_EQ(result.freed, names.size());
    EXPECT_EQ(listing(), without(before, removed));
}

TEST_F(DeleterRightsTest, ThePrivilegedCommandNamesExactlyTheBytesItWasGiven)
{
    // GIVEN names that are not UTF-8, one also ending in a line break, each beside the look-alike
    // its text would turn into if a byte were lost on the way
    const QList<QByteArray> names{"a\xff", "a?", "b\xfe\n", "b?\n", "b\xfe"};
    dir("work/odd");
    OrdinaryUser::handOver(bytes("work/odd"));
    for (const QByteArray& name : names) {
        file("work/odd/" + name, 1);
        OrdinaryUser::handOver(bytes("work/odd/" + name));
    }
    const std::set<std::string> before = listing();
    // The privileged shell's stand-in really runs the line, as an ordinary user in a child process.
    m_admin.handler = [](const AdminRequest& request) {
        const QByteArray line = request.commandLine.toUtf8();
        const pid_t child = ::fork();
        if (child == 0) {
            if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
                ::_exit(3);
            ::execl("/bin/sh", "sh", "-c", line.constData(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? AdminOutcome::Succeeded : AdminOutcome::Failed;
    };
    const QString odd = NativePath::decode(bytes("work/odd/a\xff"));
    const QString oddWithBreak = NativePath::decode(bytes("work/odd/b\xfe\n"));

    // WHEN both are handed to the administrator THEN exactly they are gone
    EXPECT_TRUE(m_deleter->removeAsAdmin({odd, oddWithBreak}));
    EXPECT_EQ(listing(), without(before, {"work/odd/a\xff", "work/odd/b\xfe\n"}));

    // A runner whose command is text (the Mac's script) is never handed such a name.
    m_admin.anyBytes = false;
    EXPECT_FALSE(m_deleter->removeAsAdmin({oddWithBreak, NativePath::decode(bytes("work/odd/b\xfe"))}));
    EXPECT_EQ(m_admin.requests().size(), 1);
}

TEST_F(DeleterRightsTest, PrivilegedRemovalAsksTheGateAgain)
{
    file("work/locked/one");
    const std::set<std::string> before = listing();

    // Only what the gate allows reaches the command; with nothing left there is no prompt.
    EXPECT_TRUE(m_deleter->removeAsAdmin({path("home"), path("work/locked/one"), path("home/Library")}));
    ASSERT_EQ(m_admin.requests().size(), 1);
    EXPECT_EQ(m_admin.requests().first().commandLine,
              QStringLiteral("/bin/rm -rf -- '%1'").arg(path("work/locked/one")));

    EXPECT_FALSE(m_deleter->removeAsAdmin({path("home"), QStringLiteral("/")}));
    EXPECT_EQ(m_admin.requests().size(), 1);
    EXPECT_EQ(listing(), before);
}

} // namespace
