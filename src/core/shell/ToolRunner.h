#pragma once

#include "core/shell/ShellResult.h"

#include <QString>
#include <QStringList>

#include <chrono>

namespace nubo {

/// Runs one command-line tool and waits for it. Code that asks tools for information or runs
/// them as cleaners receives a runner instead of calling `Shell::run` itself, so tests can answer
/// with the exact output the tools print. Implementations are safe to call from several threads.
class ToolRunner
{
public:
    virtual ~ToolRunner() = default;
    /// Status -1 and empty output when the tool could not start or ran past `timeout`.
    virtual ShellResult run(const QString& executable, const QStringList& arguments,
                            std::chrono::milliseconds timeout) const = 0;
};

/// The real runner: `Shell::run`, with its search path, its null input and error and its
/// deadline that stops the tool's whole process group.
class ShellToolRunner final : public ToolRunner
{
public:
    ShellResult run(const QString& executable, const QStringList& arguments,
                    std::chrono::milliseconds timeout) const override;
};

} // namespace nubo
