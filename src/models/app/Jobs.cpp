#include "models/app/Jobs.h"

#include <QList>
#include <QMetaObject>

#include <condition_variable>
#include <optional>
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

/// Where job threads leave their results for the model's thread. The waker is cleared, under
/// the lock, before the model goes, so a thread never wakes a model that is gone; a wake-up
/// already posted dies with the waker.
class JobMailbox
{
public:
    explicit JobMailbox(Jobs* jobs) : m_jobs(jobs) {}

    void open(JobWaker* waker)
    {
        const std::lock_guard lock(m_mutex);
        m_waker = waker;
    }

    /// Leaves a delivery, or with nothing (a stopped job) only meets the model's thread here, so
    /// that everything the job did happens before whatever the model does next.
    void post(std::optional<Jobs::Delivery> delivery)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_waker || !delivery)
            return;
        m_queue.append(std::move(*delivery));
        if (m_queue.size() == 1) {
            // Every mailbox posts into the one queue of the model's thread, which Qt guards with
            // a lock of its own that ThreadSanitizer cannot see; one lock of ours around the
            // posting shows it that two job threads never post at once.
            static std::mutex posting;
            const std::lock_guard serial(posting);
            QMetaObject::invokeMethod(m_waker, "wake", Qt::QueuedConnection);
        }
    }

    /// The last job to let go may be on another thread than the model that closed the mailbox:
    /// meeting at the lock first orders the closing before the freeing.
    static void destroy(JobMailbox* mailbox)
    {
        mailbox->m_mutex.lock();
        mailbox->m_mutex.unlock();
        delete mailbox;
    }

    void close()
    {
        QList<Jobs::Delivery> dropped;
        const std::lock_guard lock(m_mutex);
        m_waker = nullptr;
        m_jobs = nullptr;
        dropped.swap(m_queue);
    }

    // On the model's thread.
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

private:
    std::mutex m_mutex;
    JobWaker* m_waker = nullptr;
    Jobs* m_jobs;
    QList<Jobs::Delivery> m_queue;
};

void JobWaker::wake()
{
    m_mailbox->drain();
}

Jobs::Jobs(QObject* owner)
    : m_mailbox(new JobMailbox(this), &JobMailbox::destroy), m_waker(std::make_unique<JobWaker>(m_mailbox.get()))
{
    // Woken on the owner's thread, and gone with the owner.
    m_waker->moveToThread(owner->thread());
    m_mailbox->open(m_waker.get());
}

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
    it->drop.requestStop();
    m_lanes.erase(it);
}

bool Jobs::interrupt(const QString& lane)
{
    const auto it = m_lanes.find(lane);
    if (it == m_lanes.end() || it->interrupted)
        return false;
    it->interrupted = true;
    it->source.requestStop();
    return true;
}

void Jobs::stopAll(const QString& prefix)
{
    for (auto it = m_lanes.begin(); it != m_lanes.end();) {
        if (it.key().startsWith(prefix)) {
            it->source.requestStop();
            it->drop.requestStop();
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
    StopSource drop;
    const StopToken token = source.token();
    const StopToken dropped = drop.token();
    m_lanes.insert(lane, Pending{id, std::move(source), std::move(drop), false, std::move(land), std::move(failed)});

    enterRunning();
    auto body = [mailbox = m_mailbox, lane, id, token, dropped, work = std::move(work)]() mutable {
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
            if (dropped.stopRequested()) {
                delivery.value.reset();
                mailbox->post(std::nullopt);
            } else {
                mailbox->post(std::move(delivery));
            }
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
