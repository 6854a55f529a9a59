#pragma once

#include "core/files/SystemRoots.h"
#include "core/maintenance/SystemTools.h"

#include <QByteArray>
#include <QTemporaryDir>

namespace nubo::test {

/// A Mac in a temporary folder for the launch-item and maintenance code: the user's and the
/// system's launch folders, a temporary folder, and `tools` pointed at stand-in scripts for
/// launchctl, tmutil and the shell at its top (written with `tool`), for user 501.
class TemporaryMac
{
public:
    TemporaryMac();

    [[nodiscard]] bool isValid() const { return m_dir.isValid(); }
    [[nodiscard]] QString root() const { return m_dir.path(); }
    /// Absolute path of a path relative to the temporary folder.
    [[nodiscard]] QString path(const char* relative) const;
    /// Writes the stand-in tool `name` ("launchctl", "tmutil", "sh"): "#!/bin/sh", then `body`.
    void tool(const char* name, const QByteArray& body) const;
    /// The home ("home"), the system Library ("Library") and the temporary folder ("tmp").
    [[nodiscard]] SystemRoots roots() const;

    SystemTools tools;

private:
    QTemporaryDir m_dir;
};

} // namespace nubo::test
