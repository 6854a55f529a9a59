#include "core/files/NativePath.h"

namespace nubo::NativePath {

namespace {

constexpr char16_t kEscapeBase = 0xDC00;

bool isEscape(char16_t unit)
{
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

// Length of the valid UTF-8 sequence starting at `i`, or 0. Overlong forms, encoded surrogates
// and values above U+10FFFF are invalid, so no valid sequence ever decodes to an escape unit.
int validSequence(const unsigned char* s, qsizetype i, qsizetype n, char32_t& value)
{
    const unsigned char lead = s[i];
    int length = 0;
    char32_t minimum = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        value = lead & 0x1F;
        minimum = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        value = lead & 0x0F;
        minimum = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        value = lead & 0x07;
        minimum = 0x10000;
    } else {
        return 0;
    }
    if (i + length > n)
        return 0;
    for (int k = 1; k < length; ++k) {
        const unsigned char next = s[i + k];
        if ((next & 0xC0) != 0x80)
            return 0;
        value = (value << 6) | (next & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
        return 0;
    return length;
}

} // namespace

QString decode(QByteArrayView bytes)
{
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n && s[i] < 0x80)
        ++i;
    if (i == n)
        return QString::fromLatin1(bytes.data(), n); // plain ASCII, the common case

    QString out;
    out.reserve(n);
    out.append(QLatin1String(bytes.data(), i));
    while (i < n) {
        if (s[i] < 0x80) {
            out.append(QChar(char16_t(s[i])));
            ++i;
            continue;
        }
        char32_t value = 0;
        const int length = validSequence(s, i, n, value);
        if (length == 0) {
            out.append(QChar(static_cast<char16_t>(kEscapeBase + s[i])));
            ++i;
            continue;
        }
        if (value > 0xFFFF) {
            const char32_t v = value - 0x10000;
            out.append(QChar(static_cast<char16_t>(0xD800 + (v >> 10))));
            out.append(QChar(static_cast<char16_t>(0xDC00 + (v & 0x3FF))));
        } else {
            out.append(QChar(static_cast<char16_t>(value)));
        }
        i += length;
    }
    return out;
}

QByteArray encode(QStringView path)
{
    if (!hasEscapedBytes(path))
        return path.toUtf8();
    QByteArray out;
    out.reserve(path.size() * 2);
    qsizetype start = 0;
    for (qsizetype i = 0; i < path.size(); ++i) {
        const char16_t unit = path[i].unicode();
        // A low surrogate right after a high one is half of a real character, not an escape.
        const bool paired = i > 0 && path[i - 1].isHighSurrogate();
        if (!isEscape(unit) || paired)
            continue;
        out.append(path.mid(start, i - start).toUtf8());
        out.append(static_cast<char>(unit - kEscapeBase));
        start = i + 1;
    }
    out.append(path.mid(start).toUtf8());
    return out;
}

bool hasEscapedBytes(QStringView path)
{
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (isEscape(path[i].unicode()) && !(i > 0 && path[i - 1].isHighSurrogate()))
            return true;
    }
    return false;
}

} // namespace nubo::NativePath
