#include "platform/fake/ScriptedToolRunner.h"

namespace nubo {

namespace {

QStringList keyOf(const QString& executable, const QStringList& arguments)
{
    return QStringList{executable} + arguments;
}

} // namespace

ShellResult ScriptedToolRunner::run(const QString& executable, const QStringList& arguments,
                                    std::chrono::milliseconds timeout, StopToken) const
{
    ToolCall call{executable, arguments, timeout};
    {
        const std::lock_guard lock(m_mutex);
        m_calls.append(call);
        if (const auto found = m_answers.constFind(keyOf(executable, arguments));
            found != m_answers.constEnd())
            return *found;
    }
    return handler ? handler(call) : fallback;
}

void ScriptedToolRunner::answer(const QString& executable, const QStringList& arguments, ShellResult result)
{
    const std::lock_guard lock(m_mutex);
    m_answers.insert(keyOf(executable, arguments), std::move(result));
}

QList<ToolCall> ScriptedToolRunner::calls() const
{
    const std::lock_guard lock(m_mutex);
    return m_calls;
}

} // namespace nubo
