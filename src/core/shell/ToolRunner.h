#pragma once

#include "core/shell/ShellResult.h"

#include <QStringList>

#include <chrono>

namespace nubo {

/// Runs one command-line tool and waits for it, at most `timeout`. Code that reads a tool's
/// output takes one of these instead of calling the process runner itself, so that tests can
/// hand it real-looking output. Implementations are safe to call from several threads at once.
class ToolRunner
{
public:
    virtual ~ToolRunner() = default;
    virtual ShellResult run(const QString& executable, const QStringList& arguments,
                            std::chrono::milliseconds timeout) const = 0;
};

} // namespace nubo
