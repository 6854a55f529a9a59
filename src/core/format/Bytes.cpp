#include "core/format/Bytes.h"

#include <array>

namespace nubo::Bytes {

namespace {

struct Unit
{
    const char* name;
    quint64 size;     // bytes in one unit
    int decimals;     // digits shown after the separator
    quint64 step;     // bytes in one unit of the last digit shown
};

constexpr std::array<Unit, 4> kUnits{{
    {"KB", 1'000ULL, 0, 1'000ULL},
    {"MB", 1'000'000ULL, 1, 100'000ULL},
    {"GB", 1'000'000'000ULL, 2, 10'000'000ULL},
    {"TB", 1'000'000'000'000ULL, 2, 10'000'000'000ULL},
}};

constexpr quint64 pow10(int n)
{
    quint64 v = 1;
    while (n-- > 0)
        v *= 10;
    return v;
}

} // namespace

QString string(qint64 bytes, const QLocale& locale)
{
    if (bytes < 1)
        return QStringLiteral("0 KB");

    const auto n = static_cast<quint64>(bytes);
    size_t index = 0;
    while (index + 1 < kUnits.size() && n >= kUnits[index + 1].size)
        ++index;

    // Round half up in integer arithmetic, counting in units of the last digit shown. A value
    // that rounds to 1000 of a unit is written as 1 of the next ("1 MB", never "1000 KB").
    quint64 scaled = 0;
    for (;;) {
        const Unit& unit = kUnits[index];
        scaled = n / unit.step + (n % unit.step >= unit.step / 2 ? 1 : 0);
        if (index + 1 < kUnits.size() && scaled >= 1000 * pow10(unit.decimals)) {
            ++index;
            continue;
        }
        break;
    }
    // A non-empty file never reads as if it held nothing.
    if (scaled == 0)
        scaled = 1;

    const Unit& unit = kUnits[index];
    const quint64 divisor = pow10(unit.decimals);
    quint64 whole = scaled / divisor;
    quint64 fraction = scaled % divisor;
    int digits = unit.decimals;
    while (digits > 0 && fraction % 10 == 0) {
        fraction /= 10;
        --digits;
    }

    QString text = QString::number(whole);
    if (digits > 0)
        text += locale.decimalPoint() + QStringLiteral("%1").arg(fraction, digits, 10, QLatin1Char('0'));
    return text + QLatin1Char(' ') + QLatin1String(unit.name);
}

} // namespace nubo::Bytes
