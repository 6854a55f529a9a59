#include "platform/linux/UnsupportedAccessibility.h"

namespace nubo {

std::unique_ptr<Accessibility> makeAccessibility()
{
    return std::make_unique<UnsupportedAccessibility>();
}

} // namespace nubo
