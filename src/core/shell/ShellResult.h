#pragma once

#include <QString>

namespace nubo {

/// What one run of a command-line tool gave: its exit status (-1 when it could not start or was
/// stopped for running too long) and its standard output, decoded as UTF-8.
struct ShellResult
{
    int status = -1;
    QString output;

    friend bool operator==(const ShellResult&, const ShellResult&) = default;
};

} // namespace nubo
