#pragma once

#include <memory>

namespace nubo {

/// The system's record of whether the program opens by itself when the user logs in. The
/// record lives in the system, never in a settings file of ours, so callers read the state back
/// after every change instead of trusting what they asked for: a refused registration then
/// shows as off.
class LoginItem
{
public:
    virtual ~LoginItem() = default;

    [[nodiscard]] virtual bool isRegistered() const = 0;
    /// Register or unregister the program; true when the system took the change.
    virtual bool registerApp() = 0;
    virtual bool unregisterApp() = 0;
};

/// The login-item service of the platform the program was built for.
[[nodiscard]] std::unique_ptr<LoginItem> makeLoginItem();

} // namespace nubo
