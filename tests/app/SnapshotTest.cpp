#include "core/privacy/Privacy.h"
#include "models/app/AppState.h"
#include "platform/fake/FakeVolumeCapacity.h"
#include "app/ui/UiEngine.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QLocale>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QSignalSpy>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>
#include <QTest>

using namespace nubo;

namespace {

constexpr int Settle = 400; // longer than the longest animation a pane switch runs

// Renders the window at a size and writes it where people (and CI artefacts) can look at it.
QImage snapshot(QQuickWindow& window, const QSize& size, const QString& name)
{
    window.resize(size);
    QTest::qWait(Settle); // layouts settle, images load, selection animations finish
    const QImage image = window.grabWindow();
    const QString dir = qEnvironmentVariable("NUBO_SNAPSHOT_DIR", QDir::tempPath());
    QDir().mkpath(dir);
    EXPECT_TRUE(image.save(dir + QLatin1Char('/') + name + QStringLiteral(".png")));
    return image;
}

int distinctColours(const QImage& image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 4) {
        for (int x = 0; x < image.width(); x += 4)
            colours.insert(image.pixel(x, y));
    }
    return int(colours.size());
}

// Every warning the views print (a failed binding, an unknown type) is a fault in the views.
QStringList g_warnings;

void collectWarnings(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && !message.startsWith(QLatin1String("QStandardPaths:")))
        g_warnings << message;
}

class SnapshotTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        g_warnings.clear();
        m_previousHandler = qInstallMessageHandler(collectWarnings);
        UiEngine::configure(m_engine);
        m_window = UiEngine::loadMainWindow(m_engine, m_state);
        ASSERT_NE(m_window, nullptr) << "the main window's QML did not load";
    }

    void TearDown() override
    {
        qInstallMessageHandler(m_previousHandler);
        EXPECT_TRUE(g_warnings.isEmpty()) << g_warnings.join(QLatin1Char('\n')).toStdString();
    }

    QtMessageHandler m_previousHandler = nullptr;

    Privacy m_privacy{QStringLiteral("/Users/x"), [] { return true; }};
    FakeVolumeCapacity m_volume = [] {
        FakeVolumeCapacity volume;
        volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000}; // a 1 TB Mac, 82 % full
        return volume;
    }();
    AppState m_state{{m_privacy, m_volume}};
    QQmlApplicationEngine m_engine;
    QQuickWindow* m_window = nullptr;
};

} // namespace

TEST_F(SnapshotTest, TheToastOfADeletionFloatsOverTheDetail)
{
    m_state.report(5'000'000'000, 2);
    auto* toast = m_window->findChild<QQuickItem*>(QStringLiteral("toast"));
    ASSERT_NE(toast, nullptr);
    for (const QSize size : {QSize(1280, 820), QSize(960, 620)}) {
        const QString suffix = size.width() == 1280 ? QStringLiteral("default") : QStringLiteral("minimum");
        snapshot(*m_window, size, QStringLiteral("main-toast-") + suffix);
        EXPECT_TRUE(toast->isVisible());
        EXPECT_LE(toast->y() + toast->height(), qreal(size.height()));
    }
    auto* freed = m_window->findChild<QQuickItem*>(QStringLiteral("freedToday"));
    ASSERT_NE(freed, nullptr);
    EXPECT_TRUE(freed->isVisible());
    m_state.dismissToast();
    QTest::qWait(Settle * 2);
    EXPECT_FALSE(toast->isVisible());
}

TEST_F(SnapshotTest, MainWindowHasItsTitleAndSizes)
{
    EXPECT_EQ(m_window->title(), QStringLiteral("Nubo"));
    EXPECT_EQ(m_window->minimumSize(), QSize(960, 620));
    EXPECT_EQ(m_window->size(), QSize(1280, 820));
}

TEST_F(SnapshotTest, SidebarListsTheSixPanesAndTheDetailShowsTheSelectedOne)
{
    auto* list = m_window->findChild<QQuickItem*>(QStringLiteral("paneList"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->property("count").toInt(), 6);

    for (const QSize size : {QSize(1280, 820), QSize(960, 620)}) {
        const QString suffix = size.width() == 1280 ? QStringLiteral("default") : QStringLiteral("minimum");
        m_state.setSection(QStringLiteral("home"));
        const QImage home = snapshot(*m_window, size, QStringLiteral("main-home-") + suffix);
        ASSERT_EQ(home.size(), size * m_window->devicePixelRatio());
        EXPECT_GT(distinctColours(home), 8) << "the window looks empty";

        m_state.setSection(QStringLiteral("map"));
        auto* title = m_window->findChild<QQuickItem*>(QStringLiteral("paneTitle"));
        ASSERT_NE(title, nullptr);
        EXPECT_EQ(title->property("text").toString(), QStringLiteral("Mapa"));
        const QImage map = snapshot(*m_window, size, QStringLiteral("main-map-") + suffix);
        EXPECT_NE(map, home);
    }
}

namespace {

// The shared pieces the feature screens use, laid out on one page so their looks can be checked.
constexpr const char* kGallery = R"(
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
)";

} // namespace

TEST_F(SnapshotTest, SharedPiecesCheckCirclesAndTheDeleteConfirmation)
{
    QQmlComponent component(&m_engine);
    component.setData(kGallery, QUrl(QStringLiteral("qrc:/gallery.qml")));
    std::unique_ptr<QObject> root(component.create());
    ASSERT_NE(root, nullptr) << component.errorString().toStdString();
    auto* window = qobject_cast<QQuickWindow*>(root.get());
    ASSERT_NE(window, nullptr);

    QObject* confirmation = root->findChild<QObject*>(QStringLiteral("confirmation"));
    ASSERT_NE(confirmation, nullptr);
    QMetaObject::invokeMethod(confirmation, "open");
    snapshot(*window, QSize(640, 420), QStringLiteral("shared-pieces"));

    auto* title = root->findChild<QQuickItem*>(QStringLiteral("confirmationTitle"));
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->property("text").toString(), QStringLiteral("¿Eliminar 3 elementos (1,2 GB)?"));

    QSignalSpy confirmed(confirmation, SIGNAL(confirmed()));
    auto* button = root->findChild<QQuickItem*>(QStringLiteral("confirmButton"));
    ASSERT_NE(button, nullptr);
    QMetaObject::invokeMethod(button, "clicked");
    EXPECT_EQ(confirmed.count(), 1);
    QTest::qWait(Settle);
    EXPECT_FALSE(confirmation->property("visible").toBool()); // the confirmation closes itself
}
