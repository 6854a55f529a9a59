#include "core/scanner/ScanProgress.h"

#include "core/format/CheckedMath.h"

namespace nubo {

namespace {

// A copy with its own data: the text then never shares a buffer with the tree's nodes, which
// another thread may free, and the copy is made outside the lock.
QString detached(const QString& text)
{
    return QString(text.unicode(), text.size());
}

} // namespace

void ScanProgress::add(qint64 files, qint64 bytes, const QString& path)
{
    QString current = detached(path);
    const std::lock_guard guard(m_lock);
    addChecked(m_files, files);
    addChecked(m_bytes, bytes);
    m_current.swap(current);
}

ScanProgress::Snapshot ScanProgress::snapshot() const
{
    const std::lock_guard guard(m_lock);
    return {m_files, m_bytes, detached(m_current)};
}

void ScanProgress::cancel()
{
    const std::lock_guard guard(m_lock);
    m_cancelled = true;
}

bool ScanProgress::isCancelled() const
{
    const std::lock_guard guard(m_lock);
    return m_cancelled;
}

} // namespace nubo
