#include "platform/linux/PkexecAdminRunner.h"

#include "core/shell/Shell.h"

namespace nubo {

namespace {

// The user may take their time with the password, and the command may be a long removal; the
// limit only keeps a stuck command from holding the batch for ever.
constexpr std::chrono::minutes kAdminTimeout(30);

} // namespace

PkexecAdminRunner::PkexecAdminRunner() : m_folders(Shell::whichFolders()) {}

PkexecAdminRunner::PkexecAdminRunner(QStringList folders) : m_folders(std::move(folders)) {}

AdminOutcome PkexecAdminRunner::run(const AdminRequest& request)
{
    const std::optional<QString> pkexec = Shell::which(QStringLiteral("pkexec"), m_folders);
    if (!pkexec)
        return AdminOutcome::Unavailable;
    // pkexec answers 126 when the dialog was dismissed and 127 when not authorised; any other
    // status is the command's own. Only 0 is success.
    const ShellResult result =
        Shell::run(*pkexec, {QStringLiteral("/bin/sh"), QStringLiteral("-c"), request.commandLine}, kAdminTimeout);
    return result.status == 0 ? AdminOutcome::Succeeded : AdminOutcome::Failed;
}

std::unique_ptr<AdminRunner> makeAdminRunner()
{
    return std::make_unique<PkexecAdminRunner>();
}

} // namespace nubo
