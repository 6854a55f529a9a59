#pragma once

#include <QString>

namespace nubo {

/// The desktop's workspace: opening addresses and settings pages (later also running
/// applications, icons and display names). Core code uses it only through this interface.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// Opens an address (a web page, a file, a settings page). Fire and forget: an address the
    /// platform cannot open does nothing.
    virtual void openUrl(const QString& url) = 0;
};

} // namespace nubo
