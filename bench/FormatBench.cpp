// Prints how fast sizes are written and nodes classified: both run for every bubble the map draws.
#include "core/format/Bytes.h"
#include "core/format/FileKind.h"
#include "core/scanner/FileNode.h"

#include <QElapsedTimer>

#include <cstdio>

using namespace nubo;

int main()
{
    QLocale locale(QLocale::Spanish, QLocale::Spain);
    constexpr int kTexts = 1'000'000;
    QElapsedTimer timer;
    timer.start();
    qint64 length = 0;
    for (int i = 0; i < kTexts; ++i)
        length += Bytes::string(qint64(i) * 7'919'113, locale).size();
    const double textSeconds = double(timer.nsecsElapsed()) / 1e9;

    // A chain 12 folders deep with files at the bottom: the worst case of the upward walk.
    FileNode root(QStringLiteral("ana"), QStringLiteral("/Users/ana"), FileNode::Type::Directory);
    FileNode* folder = &root;
    for (int depth = 0; depth < 12; ++depth) {
        const QString name = QStringLiteral("level%1").arg(depth);
        folder = folder->addChild(std::make_unique<FileNode>(name, folder->path() + QLatin1Char('/') + name,
                                                             FileNode::Type::Directory));
    }
    const QString names[] = {QStringLiteral("notes"), QStringLiteral("clip.mov"), QStringLiteral("data.bin")};
    for (const QString& name : names)
        folder->addChild(std::make_unique<FileNode>(name, folder->path() + QLatin1Char('/') + name,
                                                    FileNode::Type::File));

    constexpr int kClassifications = 1'000'000;
    timer.restart();
    int kinds = 0;
    for (int i = 0; i < kClassifications; ++i)
        kinds += int(FileKinds::classify(*folder->children()[size_t(i % 3)]));
    const double classifySeconds = double(timer.nsecsElapsed()) / 1e9;

    std::printf("Bytes::string: %.0f texts/s (%lld chars)\n", kTexts / textSeconds, static_cast<long long>(length));
    std::printf("FileKinds::classify, 13 levels deep: %.0f nodes/s (%d)\n", kClassifications / classifySeconds,
                kinds);
    return 0;
}
