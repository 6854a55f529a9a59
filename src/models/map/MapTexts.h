#pragma once

#include "core/format/FileKind.h"

#include <QString>
#include <QtGlobal>

#include <vector>

namespace nubo {

class FileNode;

/// The texts and figures of the map screen that depend on data: counts, the scanning line, the
/// shortened path and the inspector's breakdown of a folder by kind. Pure functions.
namespace MapTexts {

/// "1 elemento" or "N elementos": how many nodes are marked.
[[nodiscard]] QString selectionCount(qint64 count);
/// "N archivos": the files below a node.
[[nodiscard]] QString fileCount(qint64 files);
/// The subtitle while a scan runs: "Analizando… · 1234 archivos · 1,2 GB".
[[nodiscard]] QString scanningLine(qint64 files, qint64 bytes);
/// The subtitle under the title once a tree is on show: "Tu carpeta · 56,1 GB · 12034 archivos".
[[nodiscard]] QString mapLine(const QString& scope, qint64 bytes, qint64 files);
/// The folder a scan is reading, with the home folder written "~" and a long middle cut down to
/// "…" so that the line keeps its first and last folders.
[[nodiscard]] QString scanningPath(const QString& path, const QString& home, int maxLength = 72);

/// One segment of a node's breakdown bar.
struct Segment
{
    FileKind kind = FileKind::Other;
    double fraction = 0;    ///< of the node's size, 0 to 1
    bool remainder = false; ///< the gray rest that the largest children leave
};

/// At most this many coloured segments, one per child with bytes, largest first.
inline constexpr int maxSegments = 6;

/// The largest children with bytes (at most `maxSegments`), each its share of the node's size,
/// then the remainder when the node is larger than they are. Nothing for a node of 0 bytes.
[[nodiscard]] std::vector<Segment> breakdown(const FileNode& node);

} // namespace MapTexts
} // namespace nubo
