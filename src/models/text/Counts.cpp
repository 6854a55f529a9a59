#include "models/text/Counts.h"

#include <QLocale>

namespace nubo::Counts {

QString number(qint64 count)
{
    return QLocale().toString(count);
}

QString items(qint64 count)
{
    if (count == 1)
        return QStringLiteral("1 elemento");
    return number(count) + QStringLiteral(" elementos");
}

} // namespace nubo::Counts
