#include "app/support/UiWorld.h"

#include <QSignalSpy>
#include <QTest>

using namespace nubo;
using namespace nubo::test;

namespace {

class ShellViewsTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        // The toast stays until dismissed, however slowly a sanitizer build draws the snapshots.
        m_toast = std::chrono::minutes(1);
        m_volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000}; // a 1 TB Mac, 82 % full
    }
};

} // namespace

TEST_F(ShellViewsTest, TheToastOfADeletionFloatsOverTheDetail)
{
    QQuickWindow& window = mainWindow();
    state().report(5'000'000'000, 2);
    QQuickItem* toast = item(window, QStringLiteral("toast"));
    ASSERT_NE(toast, nullptr);
    for (const QSize size : {DefaultSize, MinimumSize}) {
        const QString suffix = size == DefaultSize ? QStringLiteral("default") : QStringLiteral("minimum");
        // It fades in over frames, which a sanitizer build draws slowly.
        EXPECT_TRUE(QTest::qWaitFor([toast] { return toast->isVisible(); }, 5000));
        snapshot(window, size, QStringLiteral("main-toast-") + suffix);
        // The toast follows the window's new height once the layout has run, however slowly.
        EXPECT_TRUE(QTest::qWaitFor([&] { return toast->y() + toast->height() <= qreal(size.height()); }, 5000))
            << toast->y() + toast->height() << " > " << size.height();
    }
    QQuickItem* freed = item(window, QStringLiteral("freedToday"));
    ASSERT_NE(freed, nullptr);
    EXPECT_TRUE(freed->isVisible());
    state().dismissToast();
    QTest::qWait(Settle * 2);
    EXPECT_FALSE(toast->isVisible());
}

TEST_F(ShellViewsTest, SidebarListsTheSixPanesAndTheDetailShowsTheSelectedOne)
{
    QQuickWindow& window = mainWindow();
    EXPECT_EQ(window.minimumSize(), MinimumSize);
    QQuickItem* list = item(window, QStringLiteral("paneList"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->property("count").toInt(), 6);

    for (const QSize size : {DefaultSize, MinimumSize}) {
        const QString suffix = size == DefaultSize ? QStringLiteral("default") : QStringLiteral("minimum");
        state().setSection(QStringLiteral("home"));
        const QImage home = snapshot(window, size, QStringLiteral("main-home-") + suffix);
        ASSERT_EQ(home.size(), size * window.devicePixelRatio());
        EXPECT_GT(distinctColours(home), 8) << "the window looks empty";

        state().setSection(QStringLiteral("map"));
        const QImage map = snapshot(window, size, QStringLiteral("main-map-") + suffix);
        EXPECT_NE(map, home);
    }
}

// The shared pieces the feature screens use, laid out on one page so their looks can be checked.
TEST_F(ShellViewsTest, SharedPiecesCheckCirclesAndTheDeleteConfirmation)
{
    QQuickWindow* gallery = window(R"(
import QtQuick
import QtQuick.Controls
import Nubo
ApplicationWindow {
    width: 640; height: 420; visible: true
    color: Theme.windowBackground
    Row {
        x: 24; y: 24; spacing: 16
        CheckCircle { objectName: "off"; mode: "off" }
        CheckCircle { objectName: "partial"; mode: "partial" }
        CheckCircle { objectName: "on"; mode: "on"; tint: Theme.green }
    }
    DeleteConfirmation { objectName: "confirmation"; count: 3; size: 1200000000 }
}
)");
    ASSERT_NE(gallery, nullptr);
    QObject* confirmation = gallery->findChild<QObject*>(QStringLiteral("confirmation"));
    ASSERT_NE(confirmation, nullptr);
    QMetaObject::invokeMethod(confirmation, "open");
    snapshot(*gallery, QSize(640, 420), QStringLiteral("shared-pieces"));

    QSignalSpy confirmed(confirmation, SIGNAL(confirmed()));
    QQuickItem* button = gallery->findChild<QQuickItem*>(QStringLiteral("confirmButton"));
    ASSERT_NE(button, nullptr);
    QMetaObject::invokeMethod(button, "clicked");
    EXPECT_EQ(confirmed.count(), 1);
    QTest::qWait(Settle);
    EXPECT_FALSE(confirmation->property("visible").toBool()); // the confirmation closes itself
}
