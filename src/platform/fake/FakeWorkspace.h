#pragma once

#include "platform/Workspace.h"

#include <QStringList>

namespace nubo {

/// A workspace for tests: records what it was asked to do.
class FakeWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override { openedUrls << url; }

    QStringList openedUrls;
};

} // namespace nubo
