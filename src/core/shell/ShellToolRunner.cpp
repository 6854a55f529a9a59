#include "core/shell/ShellToolRunner.h"

#include "core/shell/Shell.h"

namespace nubo {

ShellResult ShellToolRunner::run(const QString& executable, const QStringList& arguments,
                                 std::chrono::milliseconds timeout, StopToken stop) const
{
    return Shell::run(executable, arguments, timeout, std::move(stop));
}

} // namespace nubo
