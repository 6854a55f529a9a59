#pragma once

#include "platform/Workspace.h"

namespace nubo {

/// The Linux desktop's workspace, through the desktop services (xdg-open underneath).
class DesktopWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override;
};

} // namespace nubo
