#pragma once

#include "core/shell/ShellResult.h"
#include "core/stop/StopToken.h"

#include <QStringList>

#include <chrono>
#include <optional>

namespace nubo::Shell {

/// The search path every tool runs with. A desktop app starts with a short one, so tools a
/// package manager installed would otherwise not be found by the scripts that call them.
inline constexpr const char* kToolSearchPath =
    "/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin";

/// The folders `which` looks in, in order.
[[nodiscard]] QStringList whichFolders();

/// Runs `executable` with `arguments` (no shell, nothing quoted) and waits for it, at most
/// `timeout`. Standard input and error are the null device; standard output is collected while
/// the tool runs, so a tool that writes a lot never stalls on a full pipe. A tool that cannot
/// start, or that is still running at the deadline, gives status -1 and empty output: it is asked
/// to terminate, killed a second later if it ignores that, and waited for one more second. The
/// tool runs in a process group of its own, and at the deadline the whole group is stopped, so
/// nothing it started outlives it. A tool that ends in time may leave children running.
/// Output is decoded as UTF-8 with invalid bytes replaced, never dropped, and not trimmed.
///
/// A run whose `stop` is requested ends the same way within about a tenth of a second: the
/// tool's group is asked to terminate, killed 50 ms later, and the result is status -1.
///
/// Blocks the calling thread for up to `timeout` plus about three seconds: never call it on the
/// user-interface thread. Any number of runs may proceed at once on different threads.
[[nodiscard]] ShellResult run(const QString& executable, const QStringList& arguments,
                              std::chrono::milliseconds timeout = std::chrono::seconds(60),
                              StopToken stop = {});

/// The first of `folders` holding an executable file called `name`, or nothing. A name that is
/// empty or holds a "/" finds nothing, so it can never reach outside those folders.
[[nodiscard]] std::optional<QString> which(const QString& name, const QStringList& folders);

/// As above, in "/opt/homebrew/bin", "/usr/local/bin" and "/usr/bin".
[[nodiscard]] std::optional<QString> which(const QString& name);

} // namespace nubo::Shell
