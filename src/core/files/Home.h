#pragma once

#include <QString>

namespace nubo::Home {

/// The current user's home folder, without a trailing slash, resolved once per process from the
/// platform's user database. When the environment variable NUBO_HOME is set at that moment it
/// replaces the real home: tests and trial runs point the whole app at a prepared folder this way.
[[nodiscard]] const QString& url();

/// The user's own home folder from the user database, whatever NUBO_HOME says: the gate keeps
/// protecting it while the program works on a prepared folder.
[[nodiscard]] const QString& real();

/// The home folder with `relative` appended ("Library/Caches" gives "<home>/Library/Caches").
[[nodiscard]] QString path(const QString& relative);

} // namespace nubo::Home
