#include "OrdinaryUser.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nubo::test {

OrdinaryUser::OrdinaryUser(QList<QByteArray> locked) : m_locked(std::move(locked)), m_root(::geteuid() == 0)
{
    enter();
}

OrdinaryUser::~OrdinaryUser()
{
    restore();
}

void OrdinaryUser::handOver(const QByteArray& path)
{
    if (::geteuid() == 0) {
        EXPECT_EQ(::lchown(path.constData(), kNobody, kNobody), 0);
    }
}

void OrdinaryUser::enter()
{
    if (m_root) {
        // Group first: once the user id is nobody, the group may no longer be changed.
        m_active = ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0;
    } else {
        for (const QByteArray& folder : m_locked)
            ::chmod(folder.constData(), 0555);
        m_active = true;
    }
}

void OrdinaryUser::restore()
{
    if (m_root) {
        EXPECT_EQ(::seteuid(0), 0);
        EXPECT_EQ(::setegid(0), 0);
    } else {
        for (const QByteArray& folder : m_locked)
            ::chmod(folder.constData(), 0755);
    }
    m_active = false;
}

QByteArray runUnprivileged(const std::function<QByteArray()>& work)
{
    if (::geteuid() != 0)
        return work();
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0) {
        ADD_FAILURE() << "pipe failed";
        return {};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeEnds[0]);
        if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
            ::_exit(3);
        const QByteArray answer = work();
        const bool written = ::write(pipeEnds[1], answer.constData(), static_cast<size_t>(answer.size())) ==
                             static_cast<ssize_t>(answer.size());
        ::_exit(written ? 0 : 4);
    }
    ::close(pipeEnds[1]);
    QByteArray answer;
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        answer.append(buffer, n);
    ::close(pipeEnds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "unprivileged child failed";
    return answer;
}

} // namespace nubo::test
