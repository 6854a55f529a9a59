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

    /// The real roots of this machine: `Home::url()`, "/Library" and the per-user temporary
    /// folder (Darwin's per-user folder on a Mac, $TMPDIR or /tmp elsewhere).
    [[nodiscard]] static SystemRoots system();
};

} // namespace nubo
