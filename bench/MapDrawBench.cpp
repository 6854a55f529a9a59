// nubo-map-draw-bench: draws the largest space map (80 folders of 80 files each, about 6,500
// bubbles) offscreen and times 100 frames of the zoom into one folder and 100 of the zoom back.
// Usage: nubo-map-draw-bench [software|opengl]  (default software; the window is offscreen unless
// QT_QPA_PLATFORM says otherwise). A frame is one grab of the window after a step of the zoom: the
// item's own work on the user-interface thread (printed apart), the scene graph's render and the
// read-back of the picture; pictures painted off that thread are waited for before the frames
// are timed, and the wait is printed. Then the pointer moving between two bubbles, a new tree
// landing, and the whole map at rest painted into an image without the scene graph.
#include "BubbleMap.h"
#include "app/ui/UiEngine.h"
#include "core/files/SystemRoots.h"
#include "core/privacy/Privacy.h"
#include "core/scanner/FileNode.h"
#include "models/app/Backends.h"
#include "models/map/MapModel.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <vector>

using namespace nubo;

namespace {

// Sizes vary over two orders of magnitude, the way a real home's folders do.
std::unique_ptr<FileNode> largestMap(const QString& rootPath)
{
    const char* extensions[] = {"mov", "png", "mp3", "zip", "pdf", "o", "txt", "dmg"};
    quint64 seed = 42;
    const auto next = [&seed] {
        seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
        return double(seed >> 11) / double(1ULL << 53);
    };
    auto root = std::make_unique<FileNode>(QStringLiteral("Tu carpeta"), rootPath, FileNode::Type::Directory);
    std::vector<std::unique_ptr<FileNode>> folders;
    qint64 total = 0;
    for (int f = 0; f < 80; ++f) {
        const QString name = QStringLiteral("carpeta-%1").arg(f);
        auto folder =
            std::make_unique<FileNode>(name, rootPath + QLatin1Char('/') + name, FileNode::Type::Directory);
        std::vector<std::unique_ptr<FileNode>> files;
        qint64 size = 0;
        for (int i = 0; i < 80; ++i) {
            const QString file =
                QStringLiteral("archivo-%1.%2").arg(i).arg(QLatin1String(extensions[(f + i) % 8]));
            auto node = std::make_unique<FileNode>(file, folder->path() + QLatin1Char('/') + file,
                                                   FileNode::Type::File);
            node->setSize(qint64(4'000'000 * (1 + 100 * next() * next())));
            node->setItemCount(1);
            size += node->size();
            files.push_back(std::move(node));
        }
        std::sort(files.begin(), files.end(),
                  [](const auto& a, const auto& b) { return a->size() > b->size(); });
        FileNode::Children children(std::make_move_iterator(files.begin()),
                                    std::make_move_iterator(files.end()));
        folder->setChildren(std::move(children));
        folder->setSize(size);
        folder->setItemCount(80);
        total += size;
        folders.push_back(std::move(folder));
    }
    std::sort(folders.begin(), folders.end(),
              [](const auto& a, const auto& b) { return a->size() > b->size(); });
    FileNode::Children children(std::make_move_iterator(folders.begin()),
                                std::make_move_iterator(folders.end()));
    root->setChildren(std::move(children));
    root->setSize(total);
    root->setItemCount(6400);
    return root;
}

struct Figures
{
    double mean = 0;
    double median = 0;
    double p95 = 0;
    double worst = 0;
};

Figures summarise(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    Figures f;
    f.mean = std::accumulate(ms.begin(), ms.end(), 0.0) / double(ms.size());
    f.median = ms[ms.size() / 2];
    f.p95 = ms[std::min(ms.size() - 1, size_t(double(ms.size()) * 0.95))];
    f.worst = ms.back();
    return f;
}

void print(const char* what, const Figures& f)
{
    std::printf("%-34s mean %6.2f ms  median %6.2f ms  p95 %6.2f ms  worst %6.2f ms\n", what, f.mean,
                f.median, f.p95, f.worst);
}

} // namespace

int main(int argc, char** argv)
{
    const QByteArray backend = argc > 1 ? QByteArray(argv[1]) : QByteArray("software");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (backend == "software")
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    else
        QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    QGuiApplication app(argc, argv);

    QTemporaryDir dir;
    const QString home = dir.path() + QStringLiteral("/home");
    QDir().mkpath(home);
    const SystemRoots roots{home, dir.path() + QStringLiteral("/Library"),
                            dir.path() + QStringLiteral("/tmp"), dir.path() + QStringLiteral("/Applications"),
                            dir.path() + QStringLiteral("/System/Applications")};
    const Privacy privacy(QStringLiteral("/nowhere"), [] { return true; });
    const auto backends = std::make_shared<Backends>(roots, privacy);
    MapModel model(backends->services());
    model.present(largestMap(home));

    QQmlApplicationEngine engine;
    UiEngine::configure(engine);
    QQmlComponent component(&engine);
    component.setData(R"(
import QtQuick
import Nubo
import Nubo.Models
Window {
    id: root
    required property MapModel model
    width: 1280; height: 820; visible: true; color: "white"
    BubbleMap { objectName: "map"; width: root.width; height: root.height; model: root.model; zoomDuration: 3600000 }
}
)",
                      QUrl(QStringLiteral("qrc:/bench/map.qml")));
    std::unique_ptr<QObject> root(
        component.createWithInitialProperties({{QStringLiteral("model"), QVariant::fromValue(&model)}}));
    auto* window = qobject_cast<QQuickWindow*>(root.get());
    if (!window) {
        std::fprintf(stderr, "the bench window did not load: %s\n", qPrintable(component.errorString()));
        return 1;
    }
    auto* map = window->findChild<BubbleMap*>(QStringLiteral("map"));
    if (!map)
        map = window->contentItem()->findChild<BubbleMap*>(QStringLiteral("map"));
    if (!map) {
        std::fprintf(stderr, "no bubble map in the bench window\n");
        return 1;
    }
    window->show();
    (void)window->grabWindow(); // the first frame loads icons and fonts

    const char* api = window->rendererInterface()->graphicsApi() == QSGRendererInterface::Software
                          ? "software"
                          : "hardware (RHI)";
    std::printf("scene graph: %s, window 1280x820, bubbles drawn at rest: %d\n", api, map->bubbleCount());

    // Frames are grabbed one after the other, with the events between them handled as a running
    // program would (a picture painted off the interface thread lands that way).
    std::vector<double> itemWork;
    const auto frame = [&](std::vector<double>& frames) {
        QCoreApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        QImage grabbed = window->grabWindow();
        frames.push_back(double(timer.nsecsElapsed()) / 1e6);
        itemWork.push_back(double(map->workNanoseconds()) / 1e6);
        return grabbed;
    };
    // How long the picture a change ordered takes to be on screen, from the change on.
    const auto untilPainted = [&](const QElapsedTimer& since) {
        while (map->painting())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        return double(since.nsecsElapsed()) / 1e6;
    };
    const auto zoom = [&](const char* what, const FileNode* to) {
        std::vector<double> frames;
        std::vector<double> first;
        QElapsedTimer since;
        since.start();
        if (to)
            model.open(to);
        else
            model.goUp();
        map->setZoomProgress(0);
        frame(first);
        const double painted = untilPainted(since);
        for (int i = 0; i < 100; ++i) {
            map->setZoomProgress(i / 99.0);
            const QImage grabbed = frame(frames);
            if (qEnvironmentVariableIsSet("NUBO_BENCH_FRAMES") && i % 20 == 0)
                grabbed.save(qEnvironmentVariable("NUBO_BENCH_FRAMES") +
                             QStringLiteral("/frame-%1-%2.png").arg(to ? u"in" : u"out").arg(i));
        }
        print(what, summarise(frames));
        std::printf("  its first frame %.2f ms (the item's own work %.2f ms); the new level's picture on "
                    "screen after %.2f ms\n",
                    first.front(), itemWork[itemWork.size() - frames.size() - 1], painted);
    };
    zoom("zoom in, 100 frames", model.root()->children().front().get());
    zoom("zoom out, 100 frames", nullptr);
    print("  of which the item's own work", summarise(itemWork));

    // The pointer going back and forth between the two largest folders at the root.
    itemWork.clear();
    std::vector<double> frames;
    for (int i = 0; i < 100; ++i) {
        model.setHovered(model.root()->children()[size_t(i % 2)].get());
        frame(frames);
    }
    print("hover, 100 frames", summarise(frames));
    print("  of which the item's own work", summarise(itemWork));

    // A new tree of the same shape lands (a scan ends): its layout and first frame, and when its
    // picture is on screen.
    frames.clear();
    itemWork.clear();
    std::vector<double> painted;
    for (int i = 0; i < 10; ++i) {
        QElapsedTimer since;
        since.start();
        model.present(largestMap(home));
        frame(frames);
        frames.back() = double(since.nsecsElapsed()) / 1e6;
        painted.push_back(untilPainted(since));
        map->setZoomProgress(1);
    }
    print("first frame of a new tree, 10 trees", summarise(frames));
    print("  of which the item's own work", summarise(itemWork));
    print("  its picture on screen after", summarise(painted));

    // The painter alone, at rest on the root, into an image the size of the window.
    painted.clear();
    QImage image(1280, 820, QImage::Format_ARGB32_Premultiplied);
    for (int i = 0; i < 100; ++i) {
        image.fill(Qt::transparent);
        QElapsedTimer timer;
        timer.start();
        QPainter painter(&image);
        map->paintBubbles(painter, QSizeF(1280, 820));
        painter.end();
        painted.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    print("painter only, 100 frames at rest", summarise(painted));
    return 0;
}
