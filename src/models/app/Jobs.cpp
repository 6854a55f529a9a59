#include "models/app/Jobs.h"

#include <QList>
#include <QMetaObject>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace nubo {

namespace {

// Every job thread of the process, counted so that the very end of the program can wait for
// them a bounded time. A job counts until everything it owned has been released.
struct Running
{
    std::mutex mutex;
    std::condition_variable ended;
    int count = 0;
};

// Never destroyed: a job thread that outlives the program's end must still find it.
Running& running()
{
    static Running* const state = new Running;
    return *state;
}

void enterRunning()
{
    const std::lock_guard lock(running().mutex);
    ++running().count;
}

void leaveRunning()
{
    Running& state = running();
    const std::lock_guard lock(state.mutex);
    if (--state.count == 0)
        state.ended.notify_all();
}

} // namespace

/// Where job threads leave their results for the model's thread. The owner is cleared, under the
/// lock, before the model goes, so a thread never wakes a model that is gone; a wake-up already
/// posted dies with the model's pending events.
class JobMailbox : public std::enable_shared_from_this<JobMailbox>
{
public:
    JobMailbox(QObject* owner, Jobs* jobs) : m_owner(owner), m_jobs(jobs) {}

    void post(Jobs::Delivery delivery)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_owner)
            return;
        m_queue.append(std::move(delivery));
        if (m_queue.size() == 1) {
            QMetaObject::invokeMethod(
                m_owner, [self = shared_from_this()] { self->drain(); }, Qt::QueuedConnection);
        }
    }

    void close()
    {
        QList<Jobs::Delivery> dropped;
        const std::lock_guard lock(m_mutex);
        m_owner = nullptr;
        m_jobs = nullptr;
        dropped.swap(m_queue);
    }

private:
    // On the owner's thread.
    void drain()
    {
        QList<Jobs::Delivery> taken;
        Jobs* jobs = nullptr;
        {
            const std::lock_guard lock(m_mutex);
            taken.swap(m_queue);
            jobs = m_jobs;
        }
        for (Jobs::Delivery& delivery : taken) {
            if (jobs)
                jobs->arrive(std::move(delivery));
        }
    }

    std::mutex m_mutex;
    QObject* m_owner;
    Jobs* m_jobs;
    QList<Jobs::Delivery> m_queue;
};

Jobs::Jobs(QObject* owner) : m_mailbox(std::make_shared<JobMailbox>(owner, this)) {}

Jobs::~Jobs()
{
    m_mailbox->close();
    stopAll();
}

void Jobs::stop(const QString& lane)
{
    const auto it = m_lanes.find(lane);
    if (it == m_lanes.end())
        return;
    it->source.requestStop();
    m_lanes.erase(it);
}

void Jobs::stopAll(const QString& prefix)
{
    for (auto it = m_lanes.begin(); it != m_lanes.end();) {
        if (it.key().startsWith(prefix)) {
            it->source.requestStop();
            it = m_lanes.erase(it);
        } else {
            ++it;
        }
    }
}

void Jobs::launch(const QString& lane, Erased work, Landing land, std::function<void()> failed)
{
    stop(lane);
    const quint64 id = ++m_next;
    StopSource source;
    const StopToken token = source.token();
    m_lanes.insert(lane, Pending{id, std::move(source), std::move(land), std::move(failed)});

    enterRunning();
    auto body = [mailbox = m_mailbox, lane, id, token, work = std::move(work)]() mutable {
        {
            Delivery delivery{lane, id, {}, false};
            try {
                delivery.value = work(token);
            } catch (...) {
                delivery.failed = true;
            }
            // What the work captured goes first, here, on this thread; so does the result of a
            // job that was stopped, which no one will read (a whole scanned tree, say).
            work = nullptr;
            if (token.stopRequested())
                delivery.value.reset();
            else
                mailbox->post(std::move(delivery));
            mailbox.reset();
        }
        leaveRunning();
    };
    try {
        std::thread(std::move(body)).detach();
    } catch (const std::system_error&) {
        // No thread could be had: the job fails as if it had thrown, later, like any result.
        leaveRunning();
        m_mailbox->post(Delivery{lane, id, {}, true});
    }
}

void Jobs::arrive(Delivery delivery)
{
    const auto it = m_lanes.find(delivery.lane);
    // Superseded, stopped, or made stale by a change: the result is dropped.
    if (it == m_lanes.end() || it->id != delivery.id)
        return;
    Pending pending = std::move(*it);
    m_lanes.erase(it);
    if (delivery.failed) {
        if (pending.failed)
            pending.failed();
    } else {
        pending.land(delivery.value);
    }
}

bool Jobs::waitForAll(std::chrono::milliseconds limit)
{
    Running& state = running();
    std::unique_lock lock(state.mutex);
    return state.ended.wait_for(lock, limit, [&state] { return state.count == 0; });
}

} // namespace nubo
