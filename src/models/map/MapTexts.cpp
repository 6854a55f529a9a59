#include "models/map/MapTexts.h"

#include "core/files/Location.h"
#include "core/format/Bytes.h"
#include "core/format/CheckedMath.h"
#include "core/scanner/FileNode.h"
#include "models/text/Counts.h"

namespace nubo::MapTexts {

namespace {

const QString separator = QStringLiteral(" · ");

} // namespace

QString selectionCount(qint64 count)
{
    return Counts::items(count);
}

QString fileCount(qint64 files)
{
    return Counts::number(files) + QStringLiteral(" archivos");
}

QString scanningLine(qint64 files, qint64 bytes)
{
    return QStringLiteral("Analizando…") + separator + fileCount(files) + separator + Bytes::string(bytes);
}

QString mapLine(const QString& scope, qint64 bytes, qint64 files)
{
    return scope + separator + Bytes::string(bytes) + separator + fileCount(files);
}

QString scanningPath(const QString& path, const QString& home, int maxLength)
{
    const QString shown = home.isEmpty() ? path : Location::tildePath(path, home);
    if (maxLength < 8 || shown.size() <= maxLength)
        return shown;
    // Keep the start (where the scan began) and as much of the end (where it is now) as fits.
    const QChar ellipsis(0x2026);
    const qsizetype head = std::min<qsizetype>(shown.indexOf(QLatin1Char('/'), 2) + 1, maxLength / 3);
    const qsizetype keepHead = head > 0 ? head : maxLength / 3;
    const qsizetype tail = maxLength - keepHead - 1;
    QString result = shown.left(keepHead) + ellipsis + shown.right(tail);
    // A cut through a surrogate pair would leave half a character (or an escaped byte) behind.
    if (result.size() > keepHead + 1 && result.at(keepHead + 1).isLowSurrogate())
        result.remove(keepHead + 1, 1);
    if (keepHead > 0 && result.at(keepHead - 1).isHighSurrogate())
        result.remove(keepHead - 1, 1);
    return result;
}

std::vector<Segment> breakdown(const FileNode& node)
{
    std::vector<Segment> segments;
    const qint64 total = node.size();
    if (total <= 0)
        return segments;
    qint64 kept = 0;
    for (const auto& child : node.children()) {
        if (int(segments.size()) == maxSegments)
            break;
        if (child->size() <= 0)
            continue;
        segments.push_back({child->kind(), double(child->size()) / double(total), false});
        kept = checkedAdd(kept, child->size());
    }
    if (total > kept)
        segments.push_back({FileKind::Other, double(total - kept) / double(total), true});
    return segments;
}

} // namespace nubo::MapTexts
