#include "platform/linux/PlainAppShell.h"

namespace nubo {

std::unique_ptr<AppShell> makeAppShell()
{
    return std::make_unique<PlainAppShell>();
}

} // namespace nubo
