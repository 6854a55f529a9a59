#include "core/deletion/Deleter.h"
#include "core/files/NativePath.h"
#include "core/files/SystemRoots.h"
#include "core/safety/Safety.h"
#include "core/shell/Shell.h"
#include "platform/fake/FakeAdminRunner.h"
#include "support/AppleScriptText.h"
#include "support/OrdinaryUser.h"
#include "support/TempTree.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;

namespace {

const QString kNotDeleted = QStringLiteral("No se pudo borrar");

QList<DeletionItem> items(const QStringList& paths, const QList<qint64>& sizes)
{
    QList<DeletionItem> out;
    for (qsizetype i = 0; i < paths.size(); ++i)
        out.append({paths[i], sizes[i]});
    return out;
}

QList<DeletionFailure> failures(const QStringList& paths, const QString& reason)
{
    QList<DeletionFailure> out;
    for (const QString& path : paths)
        out.append({path, reason});
    return out;
}

// A temporary world for deletions: a home folder (so the gate has its protected places) and a
// "work" folder of things to delete, where "locked" belongs to someone else (root, or read-only
// for a run that is not root) and "mine" to the ordinary user. Every batch is checked whole and
// against a listing taken before it, so a test proves that nothing but the expected items left.
class DeleterTest : public ::testing::Test, protected TempTree
{
protected:
    void SetUp() override
    {
        for (const char* folder : {"home/Library/Caches", "Library", "tmp", "work/locked/inner"})
            dir(folder);
        file("work/mine/own", 50);
        for (const char* relative : {"work/mine", "work/mine/own"})
            OrdinaryUser::handOver(bytes(relative));
        m_safety = std::make_unique<Safety>(SystemRoots{path("home"), path("Library"), path("tmp")},
                                            SafetyRules::forMac());
        m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
    }

    // Paths below the root.
    [[nodiscard]] QStringList at(std::initializer_list<const char*> relative) const
    {
        QStringList out;
        for (const char* item : relative)
            out << path(item);
        return out;
    }

    // Deletes the batch, as an ordinary user facing "locked" when `asUser` is set.
    [[nodiscard]] DeletionResult run(const QList<DeletionItem>& items, bool allowAdmin, bool asUser = false)
    {
        if (asUser) {
            m_user.emplace(QList<QByteArray>{bytes("work/locked"), bytes("work/locked/inner")});
            EXPECT_TRUE(m_user->active()) << "cannot act as an ordinary user here";
        }
        const DeletionResult result = m_deleter->deleteItems(items, allowAdmin);
        m_user.reset();
        return result;
    }

    // The result whole, and exactly `gone` (with everything below it) missing from `before`.
    void expect(const DeletionResult& r, const DeletionResult& expected, const std::set<std::string>& before,
                const std::set<std::string>& gone) const
    {
        EXPECT_EQ(std::tie(r.deleted, r.failed, r.freed, r.stopped),
                  std::tie(expected.deleted, expected.failed, expected.freed, expected.stopped));
        EXPECT_EQ(listing(), without(before, gone));
    }

    std::unique_ptr<Safety> m_safety;
    FakeAdminRunner m_admin;
    std::unique_ptr<Deleter> m_deleter;
    std::optional<OrdinaryUser> m_user;
};

// A file, a tree holding a link to a folder outside it, a dangling link, a link to a file outside,
// links given as "link/" and "link/." (the link is judged and removed, never its folder) and a
// missing path, which counts as deleted and frees nothing; beside them things that must stay.
// Large sizes add up exactly and one below zero frees nothing. A batch asked to stop ("Cancelar")
// reaches nothing more: untouched items are neither gone nor failed.
TEST_F(DeleterTest, RemovesFilesFoldersAndLinksButNeverWhatLinksPointTo)
{
    file("work/file", 100);
    file("work/tree/deep/leaf", 5);
    dir("work/tree/deep/empty");
    file("keep/precious", 7);
    file("work/sibling");
    for (const auto& [target, name] :
         {std::pair{"keep", "work/tree/to-keep"}, std::pair{"work/gone", "work/dangling"},
          std::pair{"keep/precious", "work/to-precious"}, std::pair{"keep", "work/slash"},
          std::pair{"keep", "work/dot"}})
        link(bytes(target), name);
    const QStringList paths = at({"work/file", "work/tree", "work/dangling", "work/to-precious",
                                  "work/missing", "work/slash/", "work/dot/."});
    const qint64 big = std::numeric_limits<qint64>::max() / 4;
    std::set<std::string> before = listing();
    expect(run(items(paths, {big, big, -big, 2, 1'000'000, 3, 4}), false), {2 * big + 9, paths, {}}, before,
           {"work/file", "work/tree", "work/dangling", "work/to-precious", "work/slash", "work/dot"});

    StopSource stop;
    stop.requestStop();
    before = listing();
    expect(m_deleter->deleteItems({{path("work/sibling"), 1}}, true, stop.token()), {0, {}, {}, true}, before,
           {});
}

// A tree 300 folders deep goes whole in a process that may hold only 64 open files (a Mac app
// gets 256 by default).
TEST_F(DeleterTest, DeepTreeGoesWholeEvenWithFewFileDescriptors)
{
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
    expect(result, {1, {path("work/deep")}, {}}, before, {"work/deep"});
}

TEST_F(DeleterTest, ProtectedPathsAreRefusedWithTheirReasonAndUntouched)
{
    file("home/Library/Caches/item", 3);
    file("home/notes");
    const QStringList refused = at({"home", "home/Library/Caches", "home/../home"});
    const std::set<std::string> before = listing();
    expect(run(items(refused + at({"home/Library/Caches/item"}) << QStringLiteral("relative/path"),
                     {9, 9, 9, 3, 9}),
               true),
           {3, at({"home/Library/Caches/item"}),
            failures(refused, QStringLiteral("Carpeta del sistema")) +
                failures({QStringLiteral("relative/path")}, QStringLiteral("Ruta no válida"))},
           before, {"home/Library/Caches/item"});
    EXPECT_TRUE(m_admin.requests().isEmpty());
}

// A name that is not UTF-8 beside the replacement character its lossy text turns into and a
// question mark in its place: the lossy text is neither reported gone nor removes a neighbour;
// the exact text (as the scanner and the listings give it) removes that file and only it.
TEST_F(DeleterTest, NameThatIsNotUtf8IsRemovedOnlyThroughItsExactText)
{
    for (const char* name : {"work/odd/a\xff", "work/odd/a\xef\xbf\xbd", "work/odd/a?"})
        file(name);
    const QString lossy = path("work/odd/a\xff");
    const QString exact = NativePath::decode(bytes("work/odd/a\xff"));
    ASSERT_TRUE(lossy.contains(QChar::ReplacementCharacter) && NativePath::hasEscapedBytes(exact));
    const std::set<std::string> before = listing();
    expect(run({{lossy, 10}}, true), {0, {}, {{lossy, kNotDeleted}}}, before, {});
    EXPECT_TRUE(m_admin.requests().isEmpty());
    expect(run({{exact, 10}}, false), {10, {exact}, {}}, before, {"work/odd/a\xff"});
}

// Items the ordinary user may not remove, in a folder of someone else's and in one it may not even
// look into (the system cannot say whether such a file exists, which must never read as "already
// gone"), beside one of its own. Without the administrator the system's message is the reason;
// with it one prompt is asked for all of them, and a refused prompt, a runner that reports success
// but removes nothing and one that cannot start all leave them, each with the reason.
TEST_F(DeleterTest, ItemsTheUserMayNotRemoveFailWithAReasonUnlessTheAdministratorRemovesThem)
{
    file("work/locked/one", 20);
    file("work/locked/inner/two", 2);
    file("work/sealed/secret", 9);
    const QStringList locked = at({"work/locked/one", "work/locked/inner/two", "work/sealed/secret"});
    const struct
    {
        bool allowAdmin;
        AdminOutcome outcome;
        QString reason;
    } rows[] = {{false, AdminOutcome::Succeeded, QString::fromLocal8Bit(std::strerror(EACCES))},
                {true, AdminOutcome::Failed, QStringLiteral("Permiso de administrador denegado")},
                {true, AdminOutcome::Succeeded, kNotDeleted},
                {true, AdminOutcome::Unavailable, kNotDeleted}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "admin " << row.allowAdmin << ", outcome " << int(row.outcome));
        file("work/mine/own", 50);
        OrdinaryUser::handOver(bytes("work/mine/own"));
        m_admin.outcome = row.outcome;
        const qsizetype prompts = m_admin.requests().size();
        const std::set<std::string> before = listing();
        ::chmod(bytes("work/sealed").constData(), 0);
        const DeletionResult result =
            run(items(locked + at({"work/mine/own"}), {1, 2, 3, 50}), row.allowAdmin, true);
        ::chmod(bytes("work/sealed").constData(), 0755);
        expect(result, {50, at({"work/mine/own"}), failures(locked, row.reason)}, before, {"work/mine/own"});
        EXPECT_EQ(m_admin.requests().size(), prompts + (row.allowAdmin ? 1 : 0));
    }
}

// Items the user may not delete, in two folders: a file, a folder, and names with quotes, a
// backslash, a newline, a leading "-", spaces and shell syntax, each beside a look-alike that must
// stay. The privileged shell's stand-in reads the script as AppleScript would, checks it says the
// same as the command line, and runs that line with the rights restored.
TEST_F(DeleterTest, OneAdministratorRunForTheWholeBatchWhateverTheNames)
{
    for (const char* name :
         {"work/locked/one", "work/locked/inner/two", "work/locked/inner/three/x", "work/locked/stays"})
        file(name);
    QStringList locked = at({"work/locked/one", "work/locked/inner/two", "work/locked/inner/three"});
    std::set<std::string> gone{"work/mine/own", "work/locked/one", "work/locked/inner/two",
                               "work/locked/inner/three"};
    for (const QByteArray name : {"say \"hi\"", "back\\slash", "it's", "new\nline", "-rf", "two  spaces ",
                                  "$(touch pwned) `touch pwned2`", "*", "\\\"", "ñandú"}) {
        file("work/locked/" + name + ".keep", 1);
        file("work/locked/" + name, 1);
        locked << path("work/locked/" + name);
        gone.insert(("work/locked/" + name).toStdString());
    }
    // The user's own item, second in the batch, goes first without the prompt; the others follow
    // in the caller's order.
    QList<DeletionItem> batch = items(locked, QList<qint64>(locked.size(), 1));
    batch.insert(1, {path("work/mine/own"), 50});
    m_admin.handler = [this](const AdminRequest& request) {
        EXPECT_EQ(shellCommandOf(request.script), request.commandLine);
        const ShellResult shell = m_user->asAdministrator([&request] {
            return Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), request.commandLine});
        });
        return shell.status == 0 ? AdminOutcome::Succeeded : AdminOutcome::Failed;
    };
    const std::set<std::string> before = listing();
    expect(run(batch, true, true), {50 + 13, at({"work/mine/own"}) + locked, {}}, before, gone);
    ASSERT_EQ(m_admin.requests().size(), 1);
    EXPECT_TRUE(m_admin.requests().first().commandLine.startsWith(
        QStringLiteral("/bin/rm -rf -- '%1' '%2' '%3' ").arg(locked[0], locked[1], locked[2])));
}

// Names that are not UTF-8, one also ending in a line break, each beside the look-alike its text
// would turn into if a byte were lost on the way. The privileged shell's stand-in really runs the
// line, as an ordinary user in a child process.
TEST_F(DeleterTest, ThePrivilegedCommandNamesExactlyTheBytesItWasGiven)
{
    dir("work/odd");
    OrdinaryUser::handOver(bytes("work/odd"));
    for (const QByteArray name : {"a\xff", "a?", "b\xfe\n", "b?\n", "b\xfe"}) {
        file("work/odd/" + name, 1);
        OrdinaryUser::handOver(bytes("work/odd/" + name));
    }
    const std::set<std::string> before = listing();
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
    EXPECT_TRUE(m_deleter->removeAsAdmin({odd, oddWithBreak}));
    EXPECT_EQ(listing(), without(before, {"work/odd/a\xff", "work/odd/b\xfe\n"}));

    // A runner whose command is text (the Mac's script) is never handed such a name.
    m_admin.anyBytes = false;
    EXPECT_FALSE(m_deleter->removeAsAdmin({oddWithBreak, NativePath::decode(bytes("work/odd/b\xfe"))}));
    EXPECT_EQ(m_admin.requests().size(), 1);
}

// Only what the gate allows reaches the privileged command; with nothing left there is no prompt.
TEST_F(DeleterTest, PrivilegedRemovalAsksTheGateAgain)
{
    file("work/locked/one");
    const std::set<std::string> before = listing();
    EXPECT_TRUE(m_deleter->removeAsAdmin({path("home"), path("work/locked/one"), path("home/Library")}));
    EXPECT_FALSE(m_deleter->removeAsAdmin({path("home"), QStringLiteral("/")}));
    ASSERT_EQ(m_admin.requests().size(), 1);
    EXPECT_EQ(m_admin.requests().first().commandLine,
              QStringLiteral("/bin/rm -rf -- '%1'").arg(path("work/locked/one")));
    EXPECT_EQ(listing(), before);
}

} // namespace
