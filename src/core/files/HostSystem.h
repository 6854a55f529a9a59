#pragma once

namespace nubo {

/// The two systems Nubo runs on. What differs between them is data picked by this value (the
/// safety rules, the cleanup's places and rows), never a compile-time switch, so both are built
/// and tested on either.
enum class HostSystem { Mac, Linux };

/// The system this program runs on, told at run time.
[[nodiscard]] HostSystem runningSystem();

} // namespace nubo
