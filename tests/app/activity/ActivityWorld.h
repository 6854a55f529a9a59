#pragma once

#include "app/support/UiWorld.h"
#include "models/activity/ActivityModel.h"
#include "models/app/Jobs.h"
#include "platform/fake/FakeAccessibility.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/fake/FakeProcessTable.h"

#include <QSignalSpy>
#include <QTest>
#include <chrono>
#include <memory>

namespace nubo::test {

/// The world's views over an activity model of scripted running apps; `OwnPid` is the program's.
class ActivityWorld : public UiWorld
{
protected:
    static constexpr qint64 OwnPid = 10;

    void TearDown() override
    {
        UiWorld::TearDown(); // the views go before the model they bind to
        m_activity.reset();
        EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    }

    /// A regular app running from /Applications/<name>.app with a footprint of `memory` bytes;
    /// the system draws an icon for Safari, and a tile stands for the others.
    RunningApplication& app(qint64 pid, const QString& name, quint64 memory)
    {
        RunningApplication running;
        running.pid = pid;
        running.name = name;
        running.bundlePath = QStringLiteral("/Applications/") + name + QStringLiteral(".app");
        running.regular = true;
        m_workspace.running << running;
        if (name == QLatin1String("Safari"))
            m_icons->known.insert(running.bundlePath, QColor(0x1E, 0x90, 0xFF));
        m_table.add(qint32(pid), (running.bundlePath + QStringLiteral("/Contents/MacOS/main")).toUtf8(), 0, memory);
        return m_workspace.running.last();
    }

    ActivityModel& activity()
    {
        using namespace std::chrono_literals;
        if (!m_activity)
            m_activity = std::make_unique<ActivityModel>(
                ActivityModel::Services{m_workspace, m_table, m_accessibility, m_login, OwnPid, 1h, 20ms});
        return *m_activity;
    }

    /// One sample landed and drawn.
    void refreshed()
    {
        QSignalSpy spy(&activity(), &ActivityModel::refreshed);
        activity().refresh();
        ASSERT_TRUE(spy.wait(5000));
        QTest::qWait(Settle);
    }

    FakeProcessTable m_table;
    FakeAccessibility m_accessibility;
    FakeLoginItem m_login;
    std::unique_ptr<ActivityModel> m_activity;
};

} // namespace nubo::test
