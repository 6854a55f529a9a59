#pragma once

#include "platform/AdminRunner.h"

#include <QList>

#include <functional>
#include <mutex>

namespace nubo {

/// An administrator runner for tests: records every request and answers `outcome`, or whatever
/// `handler` answers when one is set (a test may run the command line itself as a stand-in for
/// the privileged shell).
class FakeAdminRunner final : public AdminRunner
{
public:
    AdminOutcome run(const AdminRequest& request) override;
    [[nodiscard]] bool carriesAnyBytes() const override { return anyBytes; }

    /// The requests so far, in order.
    [[nodiscard]] QList<AdminRequest> requests() const;

    AdminOutcome outcome = AdminOutcome::Succeeded;
    std::function<AdminOutcome(const AdminRequest&)> handler;
    /// Whether this stand-in passes command lines on byte for byte, as the shell of Linux does.
    bool anyBytes = true;

private:
    mutable std::mutex m_mutex;
    QList<AdminRequest> m_requests;
};

} // namespace nubo
