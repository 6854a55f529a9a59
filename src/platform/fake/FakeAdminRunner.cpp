#include "platform/fake/FakeAdminRunner.h"

namespace nubo {

AdminOutcome FakeAdminRunner::run(const AdminRequest& request)
{
    {
        const std::lock_guard lock(m_mutex);
        m_requests.append(request);
    }
    return handler ? handler(request) : outcome;
}

QList<AdminRequest> FakeAdminRunner::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace nubo
