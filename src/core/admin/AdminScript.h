#pragma once

#include "platform/AdminRunner.h"

#include <QStringList>

namespace nubo::AdminScript {

/// `text` made safe inside an AppleScript string literal: every backslash doubled first, then
/// every double quote preceded by a backslash (in that order, so the added backslashes are not
/// doubled again). The literal reads back as `text` exactly. No quotes are added.
[[nodiscard]] QString escapeForLiteral(const QString& text);

/// One shell command line to run as the administrator:
/// do shell script "<command, escaped>" with administrator privileges
/// together with the command line itself.
[[nodiscard]] AdminRequest forCommand(const QString& command);

/// One privileged /bin/rm -rf -- for all `paths`, each a separate shell-quoted argument (the
/// script leaves the shell quoting to AppleScript's own quoted form, the command line uses
/// shellQuote, which quotes the same way). For "/a" and "/b c" the script reads
/// do shell script "/bin/rm -rf -- " & quoted form of "/a" & " " & quoted form of "/b c" with administrator privileges
/// and the command line /bin/rm -rf -- '/a' '/b c'. "--" keeps a name starting with "-" from
/// being read as an option. A path whose bytes are not all UTF-8 (see NativePath) is rebuilt in
/// the command line by printf from octal escapes, so the shell removes exactly that file and
/// never a look-alike; the script, being text, cannot carry it. `paths` must not be empty.
[[nodiscard]] AdminRequest forRemoval(const QStringList& paths);

} // namespace nubo::AdminScript
