#pragma once

#include "platform/Workspace.h"

#include <QHash>
#include <QStringList>

namespace nubo {

/// A workspace for tests: records what it was asked to do and answers from what the test put in
/// it. Fill it before handing it to the code under test; reading it is then safe from any thread.
class FakeWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override { openedUrls << url; }

    QList<RunningApplication> runningApplications() const override { return running; }

    std::optional<QString> applicationLocation(const QString& bundleIdentifier) const override
    {
        const auto found = applications.constFind(bundleIdentifier);
        if (found == applications.constEnd())
            return std::nullopt;
        return *found;
    }

    QStringList openedUrls;
    QList<RunningApplication> running;
    /// Bundle identifier (exact case) → application location, as the system's registry would say.
    QHash<QString, QString> applications;
};

} // namespace nubo
