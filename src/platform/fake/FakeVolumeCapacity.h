#pragma once

#include "platform/VolumeCapacity.h"

namespace nubo {

/// Volume figures for tests: answers `answer` for any path.
class FakeVolumeCapacity final : public VolumeCapacity
{
public:
    [[nodiscard]] VolumeFigures figures(const QString&) const override { return answer; }

    VolumeFigures answer;
};

} // namespace nubo
