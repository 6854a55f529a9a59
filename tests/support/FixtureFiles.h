#pragma once

// Makes real files, folders and links for fixtures by absolute path. Paths are raw bytes so that
// names which are not UTF-8 can be made; the QString forms encode as the program does. Failures
// are reported through gtest and the helpers carry on, so a fixture never crashes a suite.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <ostream>
#include <sys/types.h>

namespace nubo::test {

/// Creates the folder and every missing folder above it; `mode` applies to the last one.
void makeDir(const QByteArray& path, mode_t mode = 0755);
/// Writes `size` bytes (real data below 1 MiB, reserved blocks above), creating its folders.
/// Returns the allocated bytes the file system reports for it.
qint64 writeFile(const QByteArray& path, qint64 size = 10);
/// Gives the open file `size` bytes of allocated space: reserved where the system can, written elsewhere.
bool fill(int fd, qint64 size);
/// Writes exactly `content`, creating its folders.
void writeBytes(const QByteArray& path, const QByteArray& content);
void makeLink(const QByteArray& target, const QByteArray& path);
/// A stand-in tool: "#!/bin/sh", then `body`, made executable.
void writeScript(const QByteArray& path, const QByteArray& body);
/// A copy of a real program (such as /bin/sh) at `path`, creating its folders, so that a process
/// can be started from a Mac-shaped bundle. Returns `path`.
QString copyProgram(const QString& program, const QString& path);
/// Allocated bytes of one item as lstat reports them, links not followed; 0 when it is missing.
[[nodiscard]] qint64 blocksOf(const QByteArray& path);
[[nodiscard]] bool exists(const QByteArray& path);

inline void makeDir(const QString& path, mode_t mode = 0755)
{
    makeDir(QFile::encodeName(path), mode);
}
inline qint64 writeFile(const QString& path, qint64 size = 10)
{
    return writeFile(QFile::encodeName(path), size);
}
inline void writeBytes(const QString& path, const QByteArray& content)
{
    writeBytes(QFile::encodeName(path), content);
}
inline void makeLink(const QString& target, const QString& path)
{
    makeLink(QFile::encodeName(target), QFile::encodeName(path));
}
inline void writeScript(const QString& path, const QByteArray& body)
{
    writeScript(QFile::encodeName(path), body);
}
[[nodiscard]] inline qint64 blocksOf(const QString& path)
{
    return blocksOf(QFile::encodeName(path));
}

} // namespace nubo::test

QT_BEGIN_NAMESPACE
// Readable failure messages for Qt's text types.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out)
{
    *out << '{' << list.join(QStringLiteral(", ")).toStdString() << '}';
}
QT_END_NAMESPACE
