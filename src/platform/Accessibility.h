#pragma once

#include <QtGlobal>
#include <memory>

namespace nubo {

/// The system's Accessibility interface, as far as the activity pane uses it: whether the
/// program is trusted to drive other applications' windows, asking for that trust, and
/// minimising every window of an application. Where the platform has no such interface
/// (`isSupported` false) nothing is ever trusted and every call does nothing.
///
/// Every call belongs on the interface thread (where the Mac's Accessibility calls must be made).
/// `minimizeWindows` talks to the other application and may wait for it, up to a short limit the
/// backend sets, so callers make one such call per turn of the event loop.
class Accessibility
{
public:
    virtual ~Accessibility() = default;

    [[nodiscard]] virtual bool isSupported() const = 0;
    /// Read afresh on every call: the user may grant or withdraw trust at any time.
    [[nodiscard]] virtual bool isTrusted() const = 0;
    /// Shows the system's prompt when trust is missing and answers whether it is trusted now
    /// (the prompt does not wait for the user, so a first request usually answers false).
    virtual bool requestTrust() = 0;
    /// Minimises every window of the application with this process id; an application without
    /// windows, or one that has ended, is left alone.
    virtual void minimizeWindows(qint64 pid) = 0;
};

/// The interface of the platform the program was built for.
[[nodiscard]] std::unique_ptr<Accessibility> makeAccessibility();

} // namespace nubo
