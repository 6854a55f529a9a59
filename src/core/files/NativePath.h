#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace nubo::NativePath {

/// Turns the bytes of a file name or path from the disk into text that can be turned back into
/// exactly the same bytes. Valid UTF-8 reads as usual; every byte that is not part of a valid
/// UTF-8 sequence becomes the lone surrogate U+DC80 + (byte − 0x80). Such names occur on Linux
/// disks (never on APFS); without this, the text would carry U+FFFD and no longer reach the file.
[[nodiscard]] QString decode(QByteArrayView bytes);

/// The inverse of decode: the bytes to hand to the system for a path in text form. Text without
/// escaped bytes encodes as plain UTF-8.
[[nodiscard]] QByteArray encode(QStringView path);

/// True when `path` holds escaped bytes, so that it can only reach its file through `encode`.
[[nodiscard]] bool hasEscapedBytes(QStringView path);

} // namespace nubo::NativePath
