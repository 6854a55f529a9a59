#pragma once

#include "core/deletion/Deleter.h"
#include "core/files/SystemRoots.h"
#include "core/safety/Safety.h"
#include "platform/fake/FakeAdminRunner.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <memory>
#include <set>
#include <string>

namespace nubo::test {

/// A temporary world for deletions: a home folder (so the gate has its protected places), a
/// "work" folder of things to delete, and a listing of everything so a test can prove that
/// nothing but the given items disappeared. Names are handled as raw bytes throughout, since
/// some tests use names that are not UTF-8.
class DeletionFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Absolute path, as bytes, of a path relative to the temporary root.
    [[nodiscard]] QByteArray bytes(const QByteArray& relative) const;
    /// The same as the text the program holds.
    [[nodiscard]] QString path(const QByteArray& relative) const;

    void makeFolder(const QByteArray& relative, mode_t mode = 0755) const;
    void makeFile(const QByteArray& relative, qint64 size = 10) const;
    void makeLink(const QByteArray& target, const QByteArray& relative) const;
    [[nodiscard]] bool exists(const QByteArray& relative) const;

    /// Every path below the root, relative to it, links not followed.
    [[nodiscard]] std::set<std::string> tree() const;
    /// `before` less the given items and everything below them.
    [[nodiscard]] static std::set<std::string> without(std::set<std::string> before,
                                                       const std::set<std::string>& removed);

    /// Runs the batch through the real asynchronous deleter and waits for it.
    [[nodiscard]] DeletionResult run(const QList<DeletionItem>& items, bool allowAdmin);

    QTemporaryDir m_dir;
    std::unique_ptr<Safety> m_safety;
    FakeAdminRunner m_admin;
    std::unique_ptr<Deleter> m_deleter;
};

/// The user whose rights a test borrows when it needs an ordinary user: "nobody".
inline constexpr uid_t kNobody = 65534;

/// While alive, the process acts with the rights of an ordinary user, so that folders it may
/// not write refuse it as they would refuse the real user. Root switches its effective ids to
/// "nobody" (the whole process, all threads); anyone else makes the `locked` folders read-only.
/// `asAdministrator` runs a function with the rights restored, as the privileged runner would.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(QList<QByteArray> locked);
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    /// Whether folders owned by someone else are really out of reach of this process now.
    [[nodiscard]] bool active() const { return m_active; }
    /// Owner for things the ordinary user must be able to delete (root only; else a no-op).
    static void handOver(const QByteArray& path);

    template <typename Function>
    auto asAdministrator(Function&& function) -> decltype(function())
    {
        restore();
        struct Again
        {
            OrdinaryUser* self;
            ~Again() { self->enter(); }
        } again{this};
        return function();
    }

private:
    void enter();
    void restore();

    QList<QByteArray> m_locked;
    bool m_root = false;
    bool m_active = false;
};

} // namespace nubo::test
