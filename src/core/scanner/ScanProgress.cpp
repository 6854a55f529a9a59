#include "core/scanner/ScanProgress.h"

#include "core/format/CheckedMath.h"

namespace nubo {

void ScanProgress::add(qint64 files, qint64 bytes, const QString& path)
{
    const std::lock_guard guard(m_lock);
    addChecked(m_files, files);
    addChecked(m_bytes, bytes);
    m_current = path; // shares the string's data; no copy of the text under the lock
}

ScanProgress::Snapshot ScanProgress::snapshot() const
{
    const std::lock_guard guard(m_lock);
    return {m_files, m_bytes, m_current};
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
