#include "core/deletion/Deleter.h"
#include "core/files/NativePath.h"
#include "core/files/SystemRoots.h"
#include "core/safety/Safety.h"
#include "core/shell/Shell.h"
#include "platform/fake/FakeAdminRunner.h"
#include "support/AppleScriptText.h"
#include "support/OrdinaryUser.h"
#include "support/TempTree.h"

#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;

namespace {

// A temporary world for deletions: a home folder (so the gate has its protected places) and a
// "work" folder of things to delete, in a tree that can list everything, so a test can prove
// that nothing but the given items disappeared.
class DeletionFixture : public ::testing::Test, protected TempTree
{
protected:
    void SetUp() override
    {
        for (const char* folder : {"home/Library/Caches", "Library", "tmp", "work"})
            dir(folder);
        m_safety = std::make_unique<Safety>(SystemRoots{path("home"), path("Library"), path("tmp")},
                                            SafetyRules::forMac());
        m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
    }

    [[nodiscard]] DeletionResult run(const QList<DeletionItem>& items, bool allowAdmin)
    {
        return m_deleter->deleteItems(items, allowAdmin);
    }

    std::unique_ptr<Safety> m_safety;
    FakeAdminRunner m_admin;
    std::unique_ptr<Deleter> m_deleter;
};

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

TEST_F(DeleterTest, NameThatIsNotUtf8IsRemovedOnlyThroughItsExactText)
{
    // GIVEN a file whose name is not UTF-8, a neighbour whose name is the replacement character
    // that the first one's lossy text turns into, and one with a question mark in its place
    file("work/odd/a\xff");
    file("work/odd/a\xef\xbf\xbd");
    file("work/odd/a?");
    const std::set<std::string> before = listing();
    const QString lossy = path("work/odd/a\xff");
    ASSERT_TRUE(lossy.contains(QChar::ReplacementCharacter));
    // The text the scanner and the listings give for the odd name keeps its bytes.
    const QString exact = NativePath::decode(NativePath::encode(path("work/odd")) + "/a\xff");
    ASSERT_TRUE(NativePath::hasEscapedBytes(exact));

    // WHEN the lossy text is given THEN it is neither reported gone nor is the neighbour removed
    // in its place
    DeletionResult result = run({{lossy, 10}}, true);
    EXPECT_TRUE(result.deleted.isEmpty());
    EXPECT_EQ(result.failed, (QList<DeletionFailure>{{lossy, QStringLiteral("No se pudo borrar")}}));
    EXPECT_EQ(result.freed, 0);
    EXPECT_EQ(listing(), before);
    EXPECT_TRUE(m_admin.requests().isEmpty());

    // WHEN the exact text is given THEN that file, and only that file, is gone
    result = run({{exact, 10}}, false);
    EXPECT_EQ(result.deleted, QStringList{exact});
    EXPECT_EQ(result.freed, 10);
    EXPECT_EQ(listing(), without(before, {"work/odd/a\xff"}));
}

TEST_F(DeleterTest, FreedAddsLargeSizesExactlyAndAStoppedBatchReachesNothing)
{
    file("work/a");
    file("work/b");
    file("work/c");
    const qint64 big = std::numeric_limits<qint64>::max() / 2;
    const DeletionResult result =
        run({{path("work/a"), big}, {path("work/c"), -big}, {path("work/b"), big}}, false);
    EXPECT_EQ(result.freed, 2 * big);
    EXPECT_EQ(result.deleted.size(), 3);

    // Stopped ("Cancelar"), a batch reaches nothing more: untouched items are neither gone nor failed.
    file("work/d");
    StopSource stop;
    stop.requestStop();
    const DeletionResult stopped = m_deleter->deleteItems({{path("work/d"), 1}}, true, stop.token());
    EXPECT_TRUE(stopped.stopped);
    EXPECT_TRUE(stopped.deleted.isEmpty() && stopped.failed.isEmpty());
    EXPECT_TRUE(QFileInfo::exists(path("work/d")));
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
        m_admin.handler = [&user](const AdminRequest& request) {
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
    // GIVEN a file in a folder of someone else's, and one inside a folder the user may not even
    // look into: the system cannot say whether it exists, which must never be read as "already gone"
    file("work/locked/root-file", 20);
    dir("work/sealed", 0700);
    file("work/sealed/secret", 9);
    const std::set<std::string> before = listing();

    DeletionResult result;
    {
        OrdinaryUser user(lockedFolders());
        ASSERT_TRUE(user.active()) << "cannot act as an ordinary user here";
        if (::geteuid() != 0)
            ::chmod(bytes("work/sealed").constData(), 0);
        result = run({{path("work/locked/root-file"), 20},
                      {path("work/sealed/secret"), 9},
                      {path("work/mine/own"), 50}},
                     false);
        if (::geteuid() != 0)
            ::chmod(bytes("work/sealed").constData(), 0755);
    }

    const QString denied = QString::fromLocal8Bit(std::strerror(EACCES));
    EXPECT_EQ(result.failed, (QList<DeletionFailure>{{path("work/locked/root-file"), denied},
                                                     {path("work/sealed/secret"), denied}}));
    EXPECT_EQ(result.deleted, QStringList{path("work/mine/own")});
    EXPECT_EQ(result.freed, 50);
    EXPECT_TRUE(m_admin.requests().isEmpty());
    EXPECT_EQ(listing(), without(before, {"work/mine/own"}));
}

TEST_F(DeleterRightsTest, OneAdministratorRunForTheWholeBatchWhateverTheNames)
{
    // GIVEN items the user may not delete, in two folders, among one it may delete: a file, a
    // folder, and names with a double quote, a backslash, a single quote, a newline, a leading
    // "-", spaces and shell syntax, each of those next to a look-alike that must stay
    file("work/locked/one", 1);
    file("work/locked/inner/two", 2);
    dir("work/locked/inner/three");
    file("work/locked/inner/three/x", 3);
    file("work/locked/stays", 4);
    QList<DeletionItem> items{{path("work/locked/one"), 100},
                              {path("work/mine/own"), 50},
                              {path("work/locked/inner/two"), 200},
                              {path("work/locked/inner/three"), 300}};
    // The user's own item goes first, without the prompt; the others in the caller's order.
    QStringList deleted{path("work/mine/own"), path("work/locked/one"), path("work/locked/inner/two"),
                        path("work/locked/inner/three")};
    std::set<std::string> removed{"work/mine/own", "work/locked/one", "work/locked/inner/two",
                                  "work/locked/inner/three"};
    for (const QByteArray& name :
         {QByteArray("say \"hi\""), QByteArray("back\\slash"), QByteArray("it's"), QByteArray("new\nline"),
          QByteArray("-rf"), QByteArray("two  spaces "), QByteArray("$(touch pwned) `touch pwned2`"),
          QByteArray("*"), QByteArray("\\\""), QByteArray("ñandú")}) {
        file("work/locked/" + name, 1);
        file("work/locked/" + name + ".keep", 1);
        items.append({path("work/locked/" + name), 1});
        deleted.append(path("work/locked/" + name));
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

    // THEN one prompt removed them all, exactly them; the user's own item went without it
    ASSERT_EQ(m_admin.requests().size(), 1);
    EXPECT_TRUE(m_admin.requests().first().commandLine.startsWith(
        QStringLiteral("/bin/rm -rf -- '%1' '%2' '%3' ")
            .arg(path("work/locked/one"), path("work/locked/inner/two"), path("work/locked/inner/three"))));
    EXPECT_TRUE(result.failed.isEmpty()) << failedPaths(result).join(QLatin1Char(',')).toStdString();
    EXPECT_EQ(result.deleted, deleted);
    EXPECT_EQ(result.freed, 650 + 10);
    EXPECT_EQ(listing(), without(before, removed));
}

TEST_F(DeleterRightsTest, AnAdministratorRunThatRemovesNothingFailsEveryQueuedItem)
{
    // GIVEN a prompt the user refuses, a runner that reports success but removes nothing, and one
    // that could not even start the script
    file("work/locked/one");
    file("work/locked/inner/two");
    const std::set<std::string> before = listing();
    const QString denied = QStringLiteral("Permiso de administrador denegado");
    const QString notDeleted = QStringLiteral("No se pudo borrar");
    for (const auto& [outcome, reason] :
         {std::pair{AdminOutcome::Failed, denied}, std::pair{AdminOutcome::Succeeded, notDeleted},
          std::pair{AdminOutcome::Unavailable, notDeleted}}) {
        SCOPED_TRACE(testing::Message() << "outcome " << static_cast<int>(outcome));
        file("work/mine/own", 50);
        OrdinaryUser::handOver(bytes("work/mine/own"));
        m_admin.outcome = outcome;
        const qsizetype prompts = m_admin.requests().size();
        DeletionResult result;
        {
            OrdinaryUser user(lockedFolders());
            ASSERT_TRUE(user.active());
            result = run({{path("work/locked/one"), 1},
                          {path("work/locked/inner/two"), 2},
                          {path("work/mine/own"), 50}},
                         true);
        }

        // THEN one prompt for both, each reported with the reason, and only the user's own item gone
        EXPECT_EQ(m_admin.requests().size(), prompts + 1);
        EXPECT_EQ(result.failed, (QList<DeletionFailure>{{path("work/locked/one"), reason},
                                                         {path("work/locked/inner/two"), reason}}));
        EXPECT_EQ(result.deleted, QStringList{path("work/mine/own")});
        EXPECT_EQ(result.freed, 50);
        EXPECT_EQ(listing(), without(before, {"work/mine/own"}));
    }
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
