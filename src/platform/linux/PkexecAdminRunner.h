#pragma once

#include "platform/AdminRunner.h"

#include <QStringList>

namespace nubo {

/// The administrator runner of Linux desktops: polkit's pkexec runs /bin/sh -c with the request's
/// command line, after the desktop's own authentication dialog. Without pkexec the run is
/// `Unavailable`. `folders` says where pkexec is looked for (tests point it elsewhere).
class PkexecAdminRunner final : public AdminRunner
{
public:
    PkexecAdminRunner();
    explicit PkexecAdminRunner(QStringList folders);

    AdminOutcome run(const AdminRequest& request) override;
    /// The command line is ASCII and the shell rebuilds every byte from it.
    [[nodiscard]] bool carriesAnyBytes() const override { return true; }

private:
    QStringList m_folders;
};

} // namespace nubo
