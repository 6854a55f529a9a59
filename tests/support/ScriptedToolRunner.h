#pragma once

#include "core/shell/ToolRunner.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <mutex>

namespace nubo::testing {

/// A tool runner for tests: answers each command line with what the test scripted for it (by
/// program and arguments joined with spaces), status -1 for anything else, and records every call
/// in order. A script may also be a function, for answers that depend on the call. Fill it before
/// handing it over; calls from several threads are then safe.
class ScriptedToolRunner final : public ToolRunner
{
public:
    struct Call
    {
        QString executable;
        QStringList arguments;
        std::chrono::milliseconds timeout{};
    };
    using Answer = std::function<ShellResult(const Call&)>;

    void script(const QString& commandLine, ShellResult result)
    {
        m_answers.insert(commandLine, [result](const Call&) { return result; });
    }
    void script(const QString& commandLine, Answer answer) { m_answers.insert(commandLine, std::move(answer)); }

    ShellResult run(const QString& executable, const QStringList& arguments,
                    std::chrono::milliseconds timeout) const override
    {
        const Call call{executable, arguments, timeout};
        {
            const std::lock_guard lock(m_lock);
            m_calls << call;
        }
        const QString line = QStringList(QStringList{executable} + arguments).join(QLatin1Char(' '));
        const auto found = m_answers.constFind(line);
        return found == m_answers.constEnd() ? ShellResult{} : (*found)(call);
    }

    [[nodiscard]] QList<Call> calls() const
    {
        const std::lock_guard lock(m_lock);
        return m_calls;
    }

private:
    QHash<QString, Answer> m_answers;
    mutable std::mutex m_lock;
    mutable QList<Call> m_calls;
};

} // namespace nubo::testing
