#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>

namespace nubo {

/// Whether the app holds Full Disk Access, and which paths the scanners must not touch while it
/// does not: reading them would make the system ask the user folder by folder. The answer is
/// probed on first use and afterwards changes only through `refresh()`. Safe from any thread.
class Privacy
{
public:
    using Probe = std::function<bool()>;

    /// `probe` answers the access question afresh (`Permissions::hasFullDiskAccess` in production);
    /// the gated folders are built from `home` once, here.
    Privacy(const QString& home, Probe probe);
    Privacy(const Privacy&) = delete;
    Privacy& operator=(const Privacy&) = delete;

    /// The cached answer; the first read probes.
    [[nodiscard]] bool hasFullDiskAccess() const;
    /// Probes again (outside the lock, so a slow probe never holds up a scanner) and caches the answer.
    bool refresh();
    /// True when a scanner must skip `path` now: without access, anything inside a photo library
    /// and the guarded folders of the home folder themselves and everything below them. The path
    /// text is compared as given, case-sensitively, with no file-system access.
    [[nodiscard]] bool isGated(const QString& path) const;
    /// The guarded folders, in their fixed order.
    [[nodiscard]] const QStringList& gated() const { return m_gated; }

private:
    Probe m_probe;
    QStringList m_gated;
    QString m_home;
    mutable std::once_flag m_firstProbe;
    mutable std::mutex m_lock;
    mutable bool m_known = false;
    mutable bool m_answer = false;
};

} // namespace nubo
