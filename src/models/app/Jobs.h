#pragma once

#include "core/stop/StopToken.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace nubo {

class JobMailbox;

/// The object a finished job wakes on its model's thread. The wake-up is a queued call by name,
/// which Qt makes and delivers entirely inside its own library, so it carries nothing the job
/// wrote; the results wait in the mailbox behind a mutex that ThreadSanitizer sees.
class JobWaker final : public QObject
{
    Q_OBJECT

public:
    explicit JobWaker(JobMailbox* mailbox) : m_mailbox(mailbox) {}

    Q_INVOKABLE void wake();

private:
    JobMailbox* m_mailbox;
};

/// The background work of one model, and the only way a model starts any. A job runs on a thread
/// of its own and owns what it touches: values, and shared pointers to services that are safe to
/// use from any thread; never the model, never a reference. Each job belongs to a lane (a
/// cleanup category, the apps list, the map's tree…): starting a job on a lane stops the older
/// one there and drops its result, and `stop` does the same for a change that makes a read in
/// flight stale. A result reaches the model on the model's thread, and only while the model
/// lives and the job is still the newest of its lane; a job that throws reaches `failed`
/// instead, so a busy state is always cleared.
///
/// Results cross threads through a mailbox guarded by a mutex, with a wake-up that carries
/// nothing, so that ThreadSanitizer sees every hand-off. Destroying the jobs asks every job to
/// stop and returns at once: nothing here ever waits on the model's thread. The process waits,
/// a bounded time, at its very end (`waitForAll`).
class Jobs
{
public:
    /// Results are handed to `owner`'s thread; `owner` must own these jobs.
    explicit Jobs(QObject* owner);
    ~Jobs();
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;

    /// Runs `work(StopToken)` as the newest job of `lane`. `land(result)` (or `land()` for
    /// work that gives nothing) runs on the owner's thread when it ends in time; `failed()` runs
    /// there instead when it threw.
    template <typename Work, typename Land>
    void start(const QString& lane, Work work, Land land, std::function<void()> failed = {})
    {
        using Result = std::invoke_result_t<Work&, StopToken>;
        Erased erased;
        Landing landing;
        if constexpr (std::is_void_v<Result>) {
            erased = [work = std::move(work)](StopToken stop) mutable {
                work(std::move(stop));
                return std::shared_ptr<void>();
            };
            landing = [land = std::move(land)](const std::shared_ptr<void>&) mutable { land(); };
        } else {
            erased = [work = std::move(work)](StopToken stop) mutable -> std::shared_ptr<void> {
                return std::make_shared<Result>(work(std::move(stop)));
            };
            landing = [land = std::move(land)](const std::shared_ptr<void>& value) mutable {
                land(std::move(*std::static_pointer_cast<Result>(value)));
            };
        }
        launch(lane, std::move(erased), std::move(landing), std::move(failed));
    }

    /// Stops the job of `lane`, if any: it is asked to stop and its result is dropped.
    void stop(const QString& lane);
    /// Asks the job of `lane` to stop where it can and still lands what it did until then: the
    /// user's "Cancelar" on a batch, whose partial result must reach the screen. True when this
    /// call interrupted it (it ran and had not been interrupted yet).
    bool interrupt(const QString& lane);
    /// Whether the job of `lane` was interrupted and its result has not landed yet.
    [[nodiscard]] bool isInterrupted(const QString& lane) const
    {
        const auto it = m_lanes.constFind(lane);
        return it != m_lanes.constEnd() && it->interrupted;
    }
    /// Stops every job whose lane begins with `prefix`.
    void stopAll(const QString& prefix = {});
    /// Whether `lane` has a job whose result is still awaited.
    [[nodiscard]] bool isRunning(const QString& lane) const { return m_lanes.contains(lane); }

    /// Waits up to `limit` for every job of the process, stopped or not, to end: true when none
    /// is left. For the very end of the program and for tests; never on the way to quitting.
    static bool waitForAll(std::chrono::milliseconds limit);

private:
    friend class JobMailbox;
    using Erased = std::function<std::shared_ptr<void>(StopToken)>;
    using Landing = std::function<void(const std::shared_ptr<void>&)>;

    struct Pending
    {
        quint64 id = 0;
        /// Seen by the work: asked by a stop and by an interruption.
        StopSource source;
        /// Seen only by the job's ending: asked by a stop, which drops the result.
        StopSource drop;
        bool interrupted = false;
        Landing land;
        std::function<void()> failed;
    };

    struct Delivery
    {
        QString lane;
        quint64 id = 0;
        std::shared_ptr<void> value;
        bool failed = false;
    };

    void launch(const QString& lane, Erased work, Landing land, std::function<void()> failed);
    void arrive(Delivery delivery);

    std::shared_ptr<JobMailbox> m_mailbox;
    std::unique_ptr<JobWaker> m_waker;
    QHash<QString, Pending> m_lanes;
    quint64 m_next = 0;
};

} // namespace nubo
