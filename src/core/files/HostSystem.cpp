#include "core/files/HostSystem.h"

#include <QString>
#include <QSysInfo>

namespace nubo {

HostSystem runningSystem()
{
    return QSysInfo::kernelType() == QLatin1String("darwin") ? HostSystem::Mac : HostSystem::Linux;
}

} // namespace nubo
