#pragma once

#include <QString>

#include <array>
#include <optional>

namespace nubo {

class FileNode;

/// What a node of the scanned tree is, for the map's colours and the inspector's breakdown.
enum class FileKind {
    Apps,
    Developer,
    Cache,
    Video,
    Image,
    Audio,
    Archive,
    Document,
    System,
    Folder,
    Other,
};

namespace FileKinds {

/// Every kind in its fixed order (the order of the inspector's breakdown).
inline constexpr std::array<FileKind, 11> all{
    FileKind::Apps,  FileKind::Developer, FileKind::Cache,    FileKind::Video,
    FileKind::Image, FileKind::Audio,     FileKind::Archive,  FileKind::Document,
    FileKind::System, FileKind::Folder,   FileKind::Other,
};

[[nodiscard]] QString rawValue(FileKind kind);
[[nodiscard]] std::optional<FileKind> fromRawValue(const QString& raw);
[[nodiscard]] QString label(FileKind kind);
/// SF Symbol name; the icon provider maps it where the system has no such symbols.
[[nodiscard]] QString symbol(FileKind kind);
/// "#RRGGBB"; one distinct colour per kind that never changes between runs.
[[nodiscard]] QString color(FileKind kind);

/// Classifies a node: aggregates are Other; then the extension (lower-cased, then exactly as
/// written); then developer folder names; then the nearest cache or well-known user folder above
/// it, any developer folder above it; system names count only at the top two levels.
[[nodiscard]] FileKind classify(const FileNode& node);

} // namespace FileKinds
} // namespace nubo
