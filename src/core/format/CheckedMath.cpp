#include "core/format/CheckedMath.h"

namespace nubo {

qint64 checkedAdd(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (__builtin_add_overflow(a, b, &sum))
        qFatal("byte total overflow: %lld + %lld", static_cast<long long>(a), static_cast<long long>(b));
    return sum;
}

void addChecked(qint64& total, qint64 b)
{
    total = checkedAdd(total, b);
}

} // namespace nubo
