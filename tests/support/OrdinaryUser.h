#pragma once

#include <QByteArray>
#include <QList>
#include <functional>
#include <sys/types.h>

namespace nubo::test {

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

    template <typename Function> auto asAdministrator(Function&& function) -> decltype(function())
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

/// Runs `work` in a child process as "nobody" when the tests run as root (a root process reads
/// every folder whatever its mode), and returns what it wrote; anyone else runs it in place.
/// Fails the test when the child cannot be run. Use it where switching the whole process would
/// disturb other threads; `work` must not rely on threads started before the fork.
[[nodiscard]] QByteArray runUnprivileged(const std::function<QByteArray()>& work);

} // namespace nubo::test
