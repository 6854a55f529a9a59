#pragma once

#include "platform/LoginItem.h"

namespace nubo {

/// A login-item service for tests: registration succeeds unless `refuse` is set, in which case
/// the state stays as it was, the way a system that declines the request leaves it.
class FakeLoginItem final : public LoginItem
{
public:
    bool isRegistered() const override { return registered; }
    bool registerApp() override
    {
        ++changes;
        if (refuse)
            return false;
        registered = true;
        return true;
    }
    bool unregisterApp() override
    {
        ++changes;
        if (refuse)
            return false;
        registered = false;
        return true;
    }

    bool registered = false;
    bool refuse = false;
    int changes = 0;
};

} // namespace nubo
