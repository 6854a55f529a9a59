#include "core/admin/ShellQuote.h"

namespace nubo {

QString shellQuote(const QString& text)
{
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

} // namespace nubo
