#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace nubo {

/// A parallel loop over the items of a folder that may be nested inside another such loop.
///
/// A fixed set of helper threads lives as long as the object. `forEach` publishes its items, lets
/// any idle helper take them, and runs items itself on the calling thread whenever none is free;
/// while its own items are all taken it waits only for items that are running. So a nested loop
/// never waits for a thread that is itself waiting (no deadlock), and at most `helpers` + the
/// callers' threads ever run items (no oversubscription). Idle helpers take the newest published
/// items first, so a large sub-folder's own loop is shared out once the top level runs dry.
class ParallelLoop
{
public:
    /// `helpers` extra threads; 0 runs every item on the calling thread.
    explicit ParallelLoop(int helpers);
    ~ParallelLoop();
    ParallelLoop(const ParallelLoop&) = delete;
    ParallelLoop& operator=(const ParallelLoop&) = delete;

    /// Calls `body(i)` once for every i in [0, count), in parallel, and returns when all are done.
    /// `body` must not throw.
    void forEach(qsizetype count, const std::function<void(qsizetype)>& body);

    /// The helper count that suits this machine: one fewer than its cores, since the caller works too.
    [[nodiscard]] static int defaultHelpers();

private:
    struct Job
    {
        const std::function<void(qsizetype)>* body;
        qsizetype count;
        qsizetype next = 0;
        qsizetype unfinished;
    };

    void helperLoop();
    // Runs one claimed item and records its end; called without the lock held.
    void finish(Job& job, qsizetype index);

    std::mutex m_lock;
    std::condition_variable m_workAvailable;
    std::condition_variable m_itemDone;
    std::vector<Job*> m_open; // jobs with items nobody has taken yet, oldest first
    bool m_stopping = false;
    std::vector<std::thread> m_threads;
};

} // namespace nubo
