#pragma once

#include <QString>

namespace nubo {
class AdminRunner;
}

namespace nubo::Admin {

/// Runs one shell command line (several commands joined by "; " are fine) with administrator
/// rights through `runner`, one password prompt. True only when it ran and succeeded; a refused
/// or cancelled prompt, a failed command and a platform without a prompt all read false.
/// Blocks until the user answered: call it from background work.
[[nodiscard]] bool run(AdminRunner& runner, const QString& command);

} // namespace nubo::Admin
