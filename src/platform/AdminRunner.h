#pragma once

#include <QString>

#include <memory>

namespace nubo {

/// One piece of work for the administrator, in the two forms the platforms run. Both are built
/// together by portable code (see core/admin/AdminScript.h) and say the same thing:
/// `script` is the AppleScript text that macOS executes ("do shell script … with administrator
/// privileges"), `commandLine` the shell command line that this script hands to the shell and
/// that other platforms run directly.
struct AdminRequest
{
    QString script;
    QString commandLine;
};

/// How an administrator run ended. `Unavailable` means the platform could not even try (the
/// script would not compile, no authorisation tool exists), which callers treat differently from
/// a refusal: the removal then checks the disk item by item instead of blaming the user.
enum class AdminOutcome { Succeeded, Failed, Unavailable };

/// Runs one request with administrator rights behind the system's own password prompt, one
/// prompt per call. Blocks until the user has answered and the command has ended, so it is
/// called from background work only. `Failed` covers a cancelled prompt, a wrong password and a
/// command that failed alike; the reason is not passed on.
class AdminRunner
{
public:
    virtual ~AdminRunner() = default;
    virtual AdminOutcome run(const AdminRequest& request) = 0;

    /// True when the request's command line reaches the shell byte for byte, so a name that is
    /// not UTF-8 can travel in it (as octal escapes). The Mac's script is text: such a name is
    /// never handed to it, and counts as not deleted instead.
    [[nodiscard]] virtual bool carriesAnyBytes() const { return false; }
};

/// The runner of the platform the program was built for: NSAppleScript on macOS, pkexec with
/// /bin/sh elsewhere.
[[nodiscard]] std::unique_ptr<AdminRunner> makeAdminRunner();

} // namespace nubo
