#include "core/scanner/ParallelLoop.h"

#include <QThread>

#include <algorithm>

namespace nubo {

ParallelLoop::ParallelLoop(int helpers)
{
    m_threads.reserve(static_cast<size_t>(std::max(helpers, 0)));
    for (int i = 0; i < helpers; ++i)
        m_threads.emplace_back([this] { helperLoop(); });
}

ParallelLoop::~ParallelLoop()
{
    {
        const std::lock_guard guard(m_lock);
        m_stopping = true;
    }
    m_workAvailable.notify_all();
    for (auto& thread : m_threads)
        thread.join();
}

int ParallelLoop::defaultHelpers()
{
    return std::max(QThread::idealThreadCount() - 1, 0);
}

void ParallelLoop::forEach(qsizetype count, const std::function<void(qsizetype)>& body)
{
    if (count <= 0)
        return;
    if (m_threads.empty() || count == 1) {
        for (qsizetype i = 0; i < count; ++i)
            body(i);
        return;
    }

    Job job{&body, count, 0, count};
    std::unique_lock lock(m_lock);
    m_open.push_back(&job);
    lock.unlock();
    m_workAvailable.notify_all();

    lock.lock();
    while (job.next < job.count) {
        const qsizetype index = job.next++;
        if (job.next == job.count)
            std::erase(m_open, &job);
        lock.unlock();
        finish(job, index);
        lock.lock();
    }
    // Every item is taken; the ones still running belong to helpers that never wait on this thread.
    m_itemDone.wait(lock, [&job] { return job.unfinished == 0; });
}

void ParallelLoop::finish(Job& job, qsizetype index)
{
    (*job.body)(index);
    {
        const std::lock_guard guard(m_lock);
        --job.unfinished;
    }
    // The job may be gone once the lock is released; only the member condition is touched here.
    m_itemDone.notify_all();
}

void ParallelLoop::helperLoop()
{
    std::unique_lock lock(m_lock);
    for (;;) {
        m_workAvailable.wait(lock, [this] { return m_stopping || !m_open.empty(); });
        if (m_stopping)
            return;
        Job& job = *m_open.back();
        const qsizetype index = job.next++;
        if (job.next == job.count)
            m_open.pop_back();
        lock.unlock();
        finish(job, index);
        lock.lock();
    }
}

} // namespace nubo
