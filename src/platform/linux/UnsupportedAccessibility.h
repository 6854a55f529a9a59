#pragma once

#include "platform/Accessibility.h"

namespace nubo {

/// Accessibility where the platform has none the program can use: never trusted, and asking or
/// minimising does nothing. Linux desktops have no common interface for minimising another
/// program's windows.
class UnsupportedAccessibility final : public Accessibility
{
public:
    bool isSupported() const override { return false; }
    bool isTrusted() const override { return false; }
    bool requestTrust() override { return false; }
    void minimizeWindows(qint64) override {}
};

} // namespace nubo
