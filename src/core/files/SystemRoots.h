#pragma once

#include <QString>

namespace nubo {

/// The fixed places of the system that the safety rules, the scanners and the catalogues start
/// from. Production reads the real ones once (`system()`); tests build their own, pointing at a
/// temporary tree, and hand them to the services they create.
struct SystemRoots
{
    QString home;      ///< the user's home folder, no trailing slash
    QString library;   ///< the system-wide Library folder, "/Library" on a Mac
    QString temporary; ///< the per-user temporary folder as the system names it
    /// The system-wide applications folder. Defaults keep older brace-initialised roots valid.
    QString applications = QStringLiteral("/Applications");
    /// The applications that come with the system (read-only on a Mac).
    QString systemApplications = QStringLiteral("/System/Applications");
    /// The user's real home when the program works on another folder (NUBO_HOME); empty when it
    /// is `home`. The gate protects both.
    QString realHome = QString();

    /// The user's own applications folder, "Applications" in the home folder.
    [[nodiscard]] QString userApplications() const { return home + QStringLiteral("/Applications"); }
    /// The user's Library folder.
    [[nodiscard]] QString userLibrary() const { return home + QStringLiteral("/Library"); }
    /// The utilities inside the system-wide applications folder.
    [[nodiscard]] QString utilities() const { return applications + QStringLiteral("/Utilities"); }

    /// The real roots of this machine: `Home::url()` (and `Home::real()` when that differs), "/Library", the per-user temporary folder
    /// (Darwin's per-user folder on a Mac, $TMPDIR or /tmp elsewhere), "/Applications" and
    /// "/System/Applications".
    [[nodiscard]] static SystemRoots system();
};

} // namespace nubo
