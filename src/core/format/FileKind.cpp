#include "core/format/FileKind.h"

#include "core/scanner/FileNode.h"

#include <QHash>
#include <QSet>

#include <initializer_list>
#include <utility>

namespace nubo::FileKinds {

namespace {

struct KindInfo
{
    const char* raw;
    const char* label;
    const char* symbol;
    const char* color;
};

// Indexed by FileKind; the labels are the texts the user reads.
constexpr std::array<KindInfo, 11> kInfo{{
    {"apps", "Apps", "square.stack.3d.up.fill", "#0A84FF"},
    {"developer", "Desarrollo", "hammer.fill", "#5E5CE6"},
    {"cache", "Cachés", "clock.arrow.circlepath", "#FF9F0A"},
    {"video", "Vídeo", "film.fill", "#FF375F"},
    {"image", "Imágenes", "photo.fill", "#30D158"},
    {"audio", "Audio", "music.note", "#BF5AF2"},
    {"archive", "Comprimidos", "doc.zipper", "#AC8E68"},
    {"document", "Documentos", "doc.text.fill", "#FFD60A"},
    {"system", "Sistema", "gearshape.fill", "#636366"},
    {"folder", "Carpetas", "folder.fill", "#64D2FF"},
    {"other", "Otros", "doc.fill", "#AEAEB2"},
}};

const KindInfo& info(FileKind kind)
{
    return kInfo[static_cast<size_t>(kind)];
}

using Names = QSet<QString>;

Names namesOf(std::initializer_list<const char*> names)
{
    Names set;
    set.reserve(static_cast<qsizetype>(names.size()));
    for (const char* name : names)
        set.insert(QString::fromUtf8(name));
    return set;
}

const QHash<QString, FileKind>& extensionTable()
{
    static const QHash<QString, FileKind> table = [] {
        QHash<QString, FileKind> t;
        const auto add = [&t](FileKind kind, std::initializer_list<const char*> keys) {
            for (const char* key : keys)
                t.insert(QString::fromUtf8(key), kind);
        };
        add(FileKind::Video, {"mp4", "mov", "m4v", "mkv", "avi", "webm", "hevc", "prproj", "fcpbundle"});
        add(FileKind::Image, {"jpg", "jpeg", "png", "heic", "gif", "tiff", "raw", "cr2", "nef", "dng", "psd",
                              "webp", "photoslibrary", "sketch", "fig"});
        add(FileKind::Audio, {"mp3", "wav", "aiff", "flac", "m4a", "aac", "logicx", "band"});
        add(FileKind::Archive,
            {"zip", "dmg", "pkg", "tar", "gz", "rar", "7z", "xip", "iso", "ipa", "tgz", "bz2", "xz"});
        add(FileKind::Document, {"pdf", "doc", "docx", "pages", "key", "numbers", "xls", "xlsx", "ppt",
                                 "pptx", "txt", "md", "csv", "epub"});
        add(FileKind::Apps, {"app", "appex", "framework"});
        add(FileKind::Developer,
            {"xcarchive", "simruntime", "xcodeproj", "xcworkspace", "dSYM", "o", "a", "dylib", "jar", "sqlite"});
        return t;
    }();
    return table;
}

const Names& developerFolders()
{
    static const Names names = namesOf({"Developer", "DerivedData", "node_modules", "CoreSimulator", "Xcode",
                                        ".gradle", ".npm", ".cargo", ".rustup", "Pods", ".build", ".swiftpm",
                                        "iOS DeviceSupport", "Archives", ".docker", "OrbStack", ".m2",
                                        ".pub-cache", "dev", ".nvm", ".pyenv", ".venv", "venv", "Android",
                                        ".android"});
    return names;
}

const Names& cacheFolders()
{
    static const Names names = namesOf({"Caches", "Cache", ".cache", "Logs", "tmp", "Temp", "T", ".Trash"});
    return names;
}

const Names& systemFolders()
{
    static const Names names = namesOf({"System", "Library", "usr", "private", "bin", "sbin", "opt", "cores"});
    return names;
}

// The kind a well-known folder gives to everything inside it, if any.
std::optional<FileKind> userFolderKind(const QString& name)
{
    static const QHash<QString, FileKind> folders = {
        {QStringLiteral("Applications"), FileKind::Apps}, {QStringLiteral("Aplicaciones"), FileKind::Apps},
        {QStringLiteral("Movies"), FileKind::Video},      {QStringLiteral("Pictures"), FileKind::Image},
        {QStringLiteral("Music"), FileKind::Audio},       {QStringLiteral("Documents"), FileKind::Document},
        {QStringLiteral("Desktop"), FileKind::Document},
    };
    const auto it = folders.constFind(name);
    if (it == folders.constEnd())
        return std::nullopt;
    return *it;
}

FileKind folderOrOther(const FileNode& node)
{
    return node.isDirectory() ? FileKind::Folder : FileKind::Other;
}

} // namespace

QString rawValue(FileKind kind)
{
    return QString::fromUtf8(info(kind).raw);
}

std::optional<FileKind> fromRawValue(const QString& raw)
{
    for (FileKind kind : all) {
        if (raw == QLatin1String(info(kind).raw))
            return kind;
    }
    return std::nullopt;
}

QString label(FileKind kind)
{
    return QString::fromUtf8(info(kind).label);
}

QString symbol(FileKind kind)
{
    return QString::fromUtf8(info(kind).symbol);
}

QString color(FileKind kind)
{
    return QString::fromUtf8(info(kind).color);
}

FileKind classify(const FileNode& node)
{
    if (node.isAggregate())
        return FileKind::Other;

    // The lower-cased lookup comes first; the exact one exists for keys with capitals ("dSYM"),
    // so "photo.DSYM" matches neither.
    const QString extension = node.extension();
    if (!extension.isEmpty()) {
        const auto& table = extensionTable();
        auto it = table.constFind(extension.toLower());
        if (it == table.constEnd())
            it = table.constFind(extension);
        if (it != table.constEnd())
            return *it;
    }

    if (developerFolders().contains(node.name()))
        return FileKind::Developer;

    const FileNode* current = &node;
    for (;;) {
        if (cacheFolders().contains(current->name()))
            return FileKind::Cache;
        if (const auto kind = userFolderKind(current->name()))
            return *kind;
        const FileNode* parent = current->parent();
        if (!parent) {
            // Only the root and its direct children may carry a system name's meaning.
            if (node.parent() && node.parent()->parent())
                return folderOrOther(node);
            break;
        }
        if (developerFolders().contains(parent->name()))
            return FileKind::Developer;
        current = parent;
    }

    if (systemFolders().contains(node.name()))
        return FileKind::System;
    return folderOrOther(node);
}

} // namespace nubo::FileKinds
