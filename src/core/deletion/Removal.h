#pragma once

#include <QString>

namespace nubo::Removal {

/// What the disk says about a path, without following a link at its end.
enum class Presence { Present, Absent, Unknown };

/// Present when something (even a dangling link) stands at `path`; Absent only when the system
/// says that nothing does; Unknown when it cannot tell (a folder on the way that may not be
/// searched), which callers must treat as "maybe still there".
[[nodiscard]] Presence presence(const QString& path);

/// Removes `path` for good, and everything inside it when it is a folder. Links are removed,
/// never followed, so nothing outside the item can go. Keeps going past failures so as much as
/// possible goes, and answers 0 or the system error number (errno) of the first failure.
[[nodiscard]] int removeRecursively(const QString& path);

/// True for the error numbers that mean "the user may not do this": the cases an administrator
/// could still remove.
[[nodiscard]] bool isRightsFailure(int error);

/// The system's own text for an error number, in the user's language when the system has it.
[[nodiscard]] QString systemMessage(int error);

} // namespace nubo::Removal
