#pragma once

#include <QFuture>
#include <QFutureWatcher>
#include <QList>
#include <QObject>

#include <type_traits>

namespace nubo {

/// The background jobs of one model. Each job's own future is kept so that the model's destructor
/// can wait for the work that borrows its services. What a job hands back runs later on the
/// model's thread and only while the model lives; it is never waited for, since the thread that
/// would wait is the one that has to run it.
class BackgroundWork
{
public:
    /// Keeps `job` and has `done` receive its result on `owner`'s thread.
    template <typename T, typename Done> void start(QObject* owner, QFuture<T> job, Done done)
    {
        add(QFuture<void>(job));
        // A continuation attached to a job that has already finished runs at once, inside this
        // call; the extra hop through the owner's event loop keeps every result arriving later,
        // after the caller has finished setting up, however fast the job was.
        if constexpr (std::is_void_v<T>) {
            job.then(owner, [owner, done = std::move(done)]() mutable {
                QMetaObject::invokeMethod(owner, std::move(done), Qt::QueuedConnection);
            });
        } else {
            job.then(owner, [owner, done = std::move(done)](T result) mutable {
                QMetaObject::invokeMethod(
                    owner, [done = std::move(done), result = std::move(result)]() mutable { done(result); },
                    Qt::QueuedConnection);
            });
        }
    }

    void add(QFuture<void> job)
    {
        m_jobs.removeIf([](const QFuture<void>& old) { return old.isFinished(); });
        m_jobs.append(std::move(job));
    }

    void waitForAll()
    {
        for (QFuture<void>& job : m_jobs)
            job.waitForFinished();
        m_jobs.clear();
    }

private:
    QList<QFuture<void>> m_jobs;
};

} // namespace nubo
