#pragma once

#include "core/shell/ToolRunner.h"

namespace nubo {

/// The real runner: every call is a process started by `Shell::run`, with its search path,
/// discarded error output and time limit.
class ShellToolRunner final : public ToolRunner
{
public:
    using ToolRunner::run;
    ShellResult run(const QString& executable, const QStringList& arguments, std::chrono::milliseconds timeout,
                    StopToken stop) const override;
};

} // namespace nubo
