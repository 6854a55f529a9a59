#pragma once

#include "core/shell/ShellResult.h"
#include "core/stop/StopToken.h"

#include <QStringList>

#include <chrono>

namespace nubo {

/// Runs one command-line tool and waits for it, at most `timeout`. Code that reads a tool's
/// output takes one of these instead of calling the process runner itself, so that tests can
/// hand it real-looking output. Implementations are safe to call from several threads at once.
/// A run whose `stop` is requested ends within about a tenth of a second, with status -1.
class ToolRunner
{
public:
    virtual ~ToolRunner() = default;
    virtual ShellResult run(const QString& executable, const QStringList& arguments,
                            std::chrono::milliseconds timeout, StopToken stop) const = 0;
    /// The same run, for callers that never stop it.
    ShellResult run(const QString& executable, const QStringList& arguments,
                    std::chrono::milliseconds timeout) const
    {
        return run(executable, arguments, timeout, StopToken());
    }
};

} // namespace nubo
