#pragma once

#include <utility>

namespace nubo {

/// Stores `value` in `member` and emits `changed` on `owner`, unless the member already holds
/// that value: a view bound to a property redraws only on a real change. Answers whether it
/// changed, for setters that have more to tell.
template <typename Owner, typename T, typename U>
bool assignAndNotify(Owner* owner, T& member, U&& value, void (Owner::*changed)())
{
    if (member == value)
        return false;
    member = std::forward<U>(value);
    (owner->*changed)();
    return true;
}

} // namespace nubo
