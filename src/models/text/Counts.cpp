#include "models/text/Counts.h"

namespace nubo::Counts {

QString items(qint64 count)
{
    if (count == 1)
        return QStringLiteral("1 elemento");
    return QString::number(count) + QStringLiteral(" elementos");
}

} // namespace nubo::Counts
