#pragma once

#include <QString>

#include <mutex>

namespace nubo {

/// The running counts of one scan, shared by the scanning threads and the screen that polls them,
/// and the user's cancel. Every field sits behind one lock so that a snapshot is consistent.
class ScanProgress
{
public:
    struct Snapshot
    {
        qint64 files = 0;
        qint64 bytes = 0;
        QString current;
    };

    ScanProgress() = default;
    ScanProgress(const ScanProgress&) = delete;
    ScanProgress& operator=(const ScanProgress&) = delete;

    /// Adds to both counts (overflow is fatal) and records `path` as the place being scanned.
    void add(qint64 files, qint64 bytes, const QString& path);
    [[nodiscard]] Snapshot snapshot() const;
    void cancel();
    [[nodiscard]] bool isCancelled() const;

private:
    mutable std::mutex m_lock;
    qint64 m_files = 0;
    qint64 m_bytes = 0;
    QString m_current;
    bool m_cancelled = false;
};

} // namespace nubo
