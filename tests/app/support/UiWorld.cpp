#include "app/support/UiWorld.h"

#include "app/ui/UiEngine.h"

#include <QColor>
#include <QDir>
#include <QGuiApplication>
#include <QLocale>
#include <QQmlComponent>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <utility>

namespace nubo::test {

namespace {

QStringList g_warnings;

void collect(QQuickItem* root, QList<QQuickItem*>& out)
{
    out.append(root);
    for (QQuickItem* child : root->childItems())
        collect(child, out);
}

void collectWarnings(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    // Qt's own notes about its environment and its animation clock (which a slow sanitizer build
    // can stop twice) say nothing about our views.
    for (const char* noise : {"QStandardPaths:", "QUnifiedTimer::stopAnimationDriver"}) {
        if (message.startsWith(QLatin1String(noise)))
            return;
    }
    if (type != QtDebugMsg && type != QtInfoMsg)
        g_warnings << message;
}

} // namespace

void UiWorld::SetUp()
{
    ModelWorld::SetUp();
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    g_warnings.clear();
    m_previousHandler = qInstallMessageHandler(collectWarnings);
    m_engine = std::make_unique<QQmlApplicationEngine>();
    UiEngine::configure(*m_engine, m_icons);
}

void UiWorld::TearDown()
{
    // The views go before the state they bind to.
    m_windows.clear();
    m_engine.reset();
    m_main = nullptr;
    qInstallMessageHandler(m_previousHandler);
    EXPECT_TRUE(g_warnings.isEmpty()) << g_warnings.join(QLatin1Char('\n')).toStdString();
    ModelWorld::TearDown();
}

QQuickWindow& UiWorld::mainWindow()
{
    if (!m_main)
        m_main = UiEngine::loadMainWindow(*m_engine, state());
    if (!m_main)
        ADD_FAILURE() << "the main window's QML did not load";
    return *m_main;
}

QQuickWindow* UiWorld::window(const QByteArray& qml, const QVariantMap& properties)
{
    QQmlComponent component(m_engine.get());
    component.setData(qml, QUrl(QStringLiteral("qrc:/test/view.qml")));
    std::unique_ptr<QObject> root(component.createWithInitialProperties(properties));
    auto* created = qobject_cast<QQuickWindow*>(root.get());
    if (!created) {
        ADD_FAILURE() << "the test view did not load: " << component.errorString().toStdString();
        return nullptr;
    }
    m_windows.push_back(std::move(root));
    created->show();
    return created;
}

QQuickItem* UiWorld::item(QObject& root, const QString& objectName)
{
    if (auto* found = root.findChild<QQuickItem*>(objectName))
        return found;
    // Items of a plain Window hang below its content item rather than below the window object.
    if (auto* window = qobject_cast<QQuickWindow*>(&root))
        return window->contentItem()->findChild<QQuickItem*>(objectName);
    return nullptr;
}

void UiWorld::click(QQuickItem& target, Qt::MouseButton button)
{
    scrollTo(target);
    const QPointF centre = target.mapToScene(QPointF(target.width() / 2, target.height() / 2));
    QTest::mouseClick(target.window(), button, Qt::NoModifier, centre.toPoint());
}

QString UiWorld::text(const QQuickItem* item)
{
    return item ? item->property("text").toString() : QStringLiteral("<missing>");
}

QList<QQuickItem*> UiWorld::drawn(QQuickWindow& window)
{
    QList<QQuickItem*> all;
    collect(window.contentItem(), all);
    return all;
}

QList<QQuickItem*> UiWorld::visibleNamed(QQuickWindow& window, const QString& name)
{
    QList<QQuickItem*> found;
    for (QQuickItem* candidate : drawn(window)) {
        if (candidate->objectName() == name && candidate->isVisible())
            found.append(candidate);
    }
    std::stable_sort(found.begin(), found.end(), [](QQuickItem* a, QQuickItem* b) {
        return a->mapToScene(QPointF()).y() < b->mapToScene(QPointF()).y();
    });
    return found;
}

void UiWorld::scrollTo(QQuickItem& target)
{
    for (QQuickItem* up = target.parentItem(); up; up = up->parentItem()) {
        if (!up->inherits("QQuickFlickable"))
            continue;
        auto* content = up->property("contentItem").value<QQuickItem*>();
        if (!content)
            continue;
        const qreal top = target.mapToItem(content, QPointF()).y();
        const qreal most = qMax(0.0, up->property("contentHeight").toReal() - up->height());
        const qreal visibleTop = up->property("contentY").toReal();
        if (top < visibleTop || top + target.height() > visibleTop + up->height())
            up->setProperty("contentY", qBound(0.0, top - up->height() / 3, most));
    }
    QTest::qWait(50);
}

QQuickItem* UiWorld::visual(QQuickItem* root, const QString& name)
{
    if (!root)
        return nullptr;
    if (root->objectName() == name)
        return root;
    for (QQuickItem* child : root->childItems()) {
        if (QQuickItem* found = visual(child, name))
            return found;
    }
    return nullptr;
}

QQuickItem& UiWorld::named(QQuickWindow& window, const QString& name)
{
    QQuickItem* found = item(window, name);
    if (!found)
        found = visual(window.contentItem(), name);
    if (!found) {
        ADD_FAILURE() << "no item " << name.toStdString();
        static QQuickItem* none = new QQuickItem; // stands in so the test can go on and fail
        return *none;
    }
    return *found;
}

QByteArray besideSidebar(const char* view, const char* modelType)
{
    QByteArray objectName(view);
    objectName[0] = char(QChar::toLower(ushort(objectName[0])));
    return QByteArray(R"(
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo
import Nubo.Models
ApplicationWindow {
    id: win
    required property AppState appState
    required property )") + modelType + R"( model
    property int pane: 1
    width: 1280; height: 820; visible: true
    color: Theme.windowBackground
    RowLayout {
        anchors.fill: parent
        spacing: 0
        Rectangle { Layout.preferredWidth: 232; Layout.fillHeight: true; color: Theme.sidebarBackground }
        Rectangle { Layout.preferredWidth: 1; Layout.fillHeight: true; color: Theme.separator }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: win.pane
            Item {}
            )" + view + R"( {
                objectName: ")" + objectName + R"("
                appState: win.appState
                model: win.model
            }
        }
    }
}
)";
}

QImage UiWorld::snapshot(QQuickWindow& window, QSize size, const QString& name)
{
    window.resize(size);
    QTest::qWait(Settle); // layouts settle, images load, animations finish
    const QImage image = window.grabWindow();
    const QString dir = qEnvironmentVariable("NUBO_SNAPSHOT_DIR", QDir::tempPath());
    QDir().mkpath(dir);
    EXPECT_TRUE(image.save(dir + QLatin1Char('/') + name + QStringLiteral(".png")));
    return image;
}

void UiWorld::snapshots(QQuickWindow& window, const QString& name)
{
    snapshot(window, DefaultSize, name + QStringLiteral("-default"));
    snapshot(window, MinimumSize, name + QStringLiteral("-minimum"));
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

} // namespace nubo::test

namespace nubo::test {

QPalette UiWorld::darkPalette()
{
    QPalette dark = QGuiApplication::palette();
    for (const auto& [role, colour] : {std::pair{QPalette::Window, 0x1E1E1E}, {QPalette::WindowText, 0xF5F5F7},
                                       {QPalette::Base, 0x2C2C2E}, {QPalette::Text, 0xF5F5F7},
                                       {QPalette::Button, 0x3A3A3C}, {QPalette::ButtonText, 0xF5F5F7}})
        dark.setColor(role, QColor(QRgb(colour)));
    return dark;
}

} // namespace nubo::test
