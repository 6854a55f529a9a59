#pragma once

#include "models/support/ModelWorld.h"
#include "platform/fake/FakeAppIcons.h"

#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QPalette>
#include <QQuickWindow>
#include <QSize>
#include <QVariantMap>
#include <memory>

namespace nubo::test {

/// The models' temporary machine with Nubo's views on top: an engine set up like the program's,
/// the main window over the world's state, windows built from a few lines of QML for one view
/// with fixture models, and snapshots written where people (and CI artefacts) can look at them.
/// Every warning the views print (a failed binding, an unknown type) fails the test.
class UiWorld : public ModelWorld
{
protected:
    static constexpr QSize DefaultSize{1280, 820};
    static constexpr QSize MinimumSize{960, 620};
    /// Longer than the longest animation a pane switch or a sheet runs.
    static constexpr int Settle = 400;

    void SetUp() override;
    void TearDown() override;

    /// The main window over `state()`, loaded once.
    QQuickWindow& mainWindow();
    /// A window made from QML source; the source may import QtQuick, QtQuick.Controls, Nubo and
    /// Nubo.Models and declare required properties, which `properties` fill. Fails the test
    /// (and returns nullptr) when the QML does not load.
    QQuickWindow* window(const QByteArray& qml, const QVariantMap& properties = {});

    /// The item named `objectName` below `root`; nullptr when there is none.
    static QQuickItem* item(QObject& root, const QString& objectName);
    /// Scrolls the item into view and clicks its middle with the mouse, the way a user would: a
    /// disabled or covered control does not react.
    static void click(QQuickItem& target, Qt::MouseButton button = Qt::LeftButton);
    /// The item's "text", or "<missing>" for no item, so that a lost control fails by its name.
    static QString text(const QQuickItem* item);
    static QString text(const QQuickItem& item) { return text(&item); }
    /// `visual` for a name written in the test.
    static QQuickItem* in(QQuickItem* parent, const char* name) { return visual(parent, QString::fromUtf8(name)); }

    /// Every item the window draws, in visual-tree order: the rows that lists and repeaters create
    /// are not children of the window in the object tree, so `item` cannot find them.
    static QList<QQuickItem*> drawn(QQuickWindow& window);
    /// The visible items called `name` that the window draws, top to bottom.
    static QList<QQuickItem*> visibleNamed(QQuickWindow& window, const QString& name);
    /// Scrolls every list or page around `target` so that it shows, as a user would before
    /// clicking it.
    static void scrollTo(QQuickItem& target);

    /// The item named `name` anywhere in the visual tree below `root`: list and repeater rows and
    /// the entries of an open menu hang there, not below their view as QObject children.
    static QQuickItem* visual(QQuickItem* root, const QString& name);
    /// The item named `name`, found by `item` or among the items the window draws; a missing one
    /// fails the test and stands in with an empty item, so the test goes on and fails.
    static QQuickItem& named(QQuickWindow& window, const QString& name);
    /// Resizes the window, lets it settle and writes `<name>.png`.
    QImage snapshot(QQuickWindow& window, QSize size, const QString& name);
    /// `<name>-default.png` and `<name>-minimum.png` at the window's two sizes.
    void snapshots(QQuickWindow& window, const QString& name);
    /// The system's palette as a dark appearance sets it, from the light one.
    static QPalette darkPalette();

    /// The system's pictures of applications, by path; an application without one shows its tile.
    std::shared_ptr<FakeAppIcons> m_icons = std::make_shared<FakeAppIcons>();
    std::unique_ptr<QQmlApplicationEngine> m_engine;

private:
    QtMessageHandler m_previousHandler = nullptr;
    QQuickWindow* m_main = nullptr;
    std::vector<std::unique_ptr<QObject>> m_windows;
};

/// QML for a window with one pane's view (`view`, with `appState` and a `model` of type
/// `modelType` as required properties) beside a stand-in sidebar, at the width the main window
/// gives it, in a stack of panes as the main window holds it (the window's `pane` 0 hides it
/// behind another); the view is named after its type in lower camel case ("activityView").
[[nodiscard]] QByteArray besideSidebar(const char* view, const char* modelType);

/// How many different colours a sparse grid of the image's pixels shows: a blank or broken
/// view shows very few.
[[nodiscard]] int distinctColours(const QImage& image);

} // namespace nubo::test
