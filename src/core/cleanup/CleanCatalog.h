#pragma once

#include "core/cleanup/CleanCategory.h"
#include "core/files/HostSystem.h"

#include <QList>
#include <QString>
#include <functional>
#include <mutex>

namespace nubo {

/// The fixed catalogue of eighteen cleanup categories, in display order within each group.
///
/// The rows themselves (texts, icons, tints, defaults, cautions) are plain data, the same for every
/// run: `rows()`. What each category scans depends on the services the program was started with
/// (the safety gate, the privacy gate, the application catalogue, the tool runner), so a catalogue
/// object is built with a `Rules` function that, given a category id, hands back its scan; `all()`
/// binds every row to its rule once, on first use, and never changes afterwards. A row whose rule is
/// missing scans to an empty list rather than failing.
class CleanCatalog
{
public:
    using Rules = std::function<CleanCategory::Scan(const QString& categoryId)>;

    explicit CleanCatalog(Rules rules = {}, HostSystem system = HostSystem::Mac);
    CleanCatalog(const CleanCatalog&) = delete;
    CleanCatalog& operator=(const CleanCatalog&) = delete;

    /// Every category with its scan bound. Built once, thread-safely, then shared read-only.
    [[nodiscard]] const QList<CleanCategory>& all() const;

    /// The eighteen rows as data; each `scan` returns no items. Built once, thread-safely.
    [[nodiscard]] static const QList<CleanCategory>& rows();
    /// The rows a system shows: the Mac's eighteen, or Linux's, which leave out what cannot exist
    /// there (Mail, Xcode, device backups) and name Linux's things in their subtitles.
    [[nodiscard]] static const QList<CleanCategory>& rows(HostSystem system);

private:
    Rules m_rules;
    HostSystem m_system;
    mutable std::once_flag m_bound;
    mutable QList<CleanCategory> m_all;
};

} // namespace nubo
