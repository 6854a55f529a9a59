#pragma once

#include "core/shell/ToolRunner.h"

#include <QHash>
#include <QList>

#include <functional>
#include <mutex>

namespace nubo {

/// One call a ScriptedToolRunner received.
struct ToolCall
{
    QString executable;
    QStringList arguments;
    std::chrono::milliseconds timeout{0};

    friend bool operator==(const ToolCall&, const ToolCall&) = default;
};

/// A tool runner for tests: records every call and answers what the test scripted for that exact
/// executable and arguments, else what `handler` answers when one is set, else `fallback` (by
/// default status -1 and no output, as for a tool that does not exist). Script it before handing
/// it to the code under test; calls may then come from any thread.
class ScriptedToolRunner final : public ToolRunner
{
public:
    using ToolRunner::run;
    ShellResult run(const QString& executable, const QStringList& arguments, std::chrono::milliseconds timeout,
                    StopToken stop) const override;

    /// From now on, `executable` run with exactly `arguments` gives `result`.
    void answer(const QString& executable, const QStringList& arguments, ShellResult result);

    /// The calls so far, in order.
    [[nodiscard]] QList<ToolCall> calls() const;

    std::function<ShellResult(const ToolCall&)> handler;
    ShellResult fallback;

private:
    mutable std::mutex m_mutex;
    QHash<QStringList, ShellResult> m_answers;
    mutable QList<ToolCall> m_calls;
};

} // namespace nubo
