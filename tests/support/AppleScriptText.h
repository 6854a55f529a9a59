#pragma once

#include <QString>

#include <optional>

namespace nubo::test {

/// Reads an administrator script the way AppleScript would and gives the shell command line it
/// hands to "do shell script". Understands only what those scripts use:
///   do shell script <term> [& <term>]... with administrator privileges
/// where a term is a string literal or `quoted form of` a string literal. Anything else gives
/// nothing, so a malformed script fails the test instead of passing by accident.
std::optional<QString> shellCommandOf(const QString& script);

} // namespace nubo::test
