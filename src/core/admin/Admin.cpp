#include "core/admin/Admin.h"

#include "core/admin/AdminScript.h"

namespace nubo::Admin {

bool run(AdminRunner& runner, const QString& command)
{
    return runner.run(AdminScript::forCommand(command)) == AdminOutcome::Succeeded;
}

} // namespace nubo::Admin
