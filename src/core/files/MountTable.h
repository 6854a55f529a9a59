#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

namespace nubo::MountTable {

/// The kernel's table of what is mounted where, as this process sees it.
inline constexpr const char* kSystemTable = "/proc/self/mountinfo";

/// The mount points listed in the table at `table`, in its order; empty where there is none
/// (a Mac has no such file) or it cannot be read.
[[nodiscard]] QStringList points(const QString& table = QString::fromLatin1(kSystemTable));

/// The mount points of a table's text: the fifth field of each line, with the kernel's octal
/// escapes of spaces, tabs, line breaks and backslashes undone. Malformed lines are skipped.
[[nodiscard]] QStringList parse(QByteArrayView text);

} // namespace nubo::MountTable
