#include "core/shell/ToolRunner.h"

#include "core/shell/Shell.h"

namespace nubo {

ShellResult ShellToolRunner::run(const QString& executable, const QStringList& arguments,
                                 std::chrono::milliseconds timeout) const
{
    return Shell::run(executable, arguments, timeout);
}

} // namespace nubo
