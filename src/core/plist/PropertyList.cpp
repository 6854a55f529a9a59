#include "core/plist/PropertyList.h"

#include "core/files/NativePath.h"

#include <QDateTime>
#include <QFile>
#include <QTimeZone>
#include <QVariantList>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo::PropertyList {

namespace {

// Seconds between 1970-01-01 and 2001-01-01, the epoch property-list dates count from.
constexpr qint64 kAppleEpochOffset = 978307200;

// A crafted list can nest arrays far deeper than any real one; below this depth the rest is
// dropped rather than risking the stack on a file that came from who knows where.
constexpr int kMaxDepth = 64;

struct PlistFree
{
    void operator()(plist_t node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

// libplist hands out malloc'd copies of strings and keys; this returns them to the C allocator.
struct CFree
{
    void operator()(void* memory) const { std::free(memory); }
};

QString takeString(char* raw)
{
    const std::unique_ptr<char, CFree> owned(raw);
    return raw ? QString::fromUtf8(raw) : QString();
}

QVariant convert(plist_t node, int depth)
{
    if (!node || depth > kMaxDepth)
        return {};
    switch (plist_get_node_type(node)) {
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter iterator = nullptr;
        plist_dict_new_iter(node, &iterator);
        if (!iterator)
            return map;
        const std::unique_ptr<void, CFree> ownedIterator(iterator);
        for (;;) {
            char* key = nullptr;
            plist_t value = nullptr;
            plist_dict_next_item(node, iterator, &key, &value);
            if (!value) {
                std::free(key);
                break;
            }
            const QString name = takeString(key);
            map.insert(name, convert(value, depth + 1));
        }
        return map;
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t count = plist_array_get_size(node);
        list.reserve(static_cast<qsizetype>(count));
        for (uint32_t i = 0; i < count; ++i)
            list << convert(plist_array_get_item(node, i), depth + 1);
        return list;
    }
    case PLIST_STRING: {
        char* value = nullptr;
        plist_get_string_val(node, &value);
        return takeString(value);
    }
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return value != 0;
    }
    case PLIST_UINT: {
        uint64_t value = 0;
        plist_get_uint_val(node, &value);
        // Binary lists store negative integers as eight-byte two's complement: the cast reads
        // them back as the negative numbers they are.
        return static_cast<qint64>(value);
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_DATA: {
        char* value = nullptr;
        uint64_t length = 0;
        plist_get_data_val(node, &value, &length);
        const std::unique_ptr<char, CFree> owned(value);
        if (!value || length > static_cast<uint64_t>(std::numeric_limits<int>::max()))
            return QByteArray();
        return QByteArray(value, static_cast<qsizetype>(length));
    }
    case PLIST_DATE: {
        int32_t seconds = 0;
        int32_t micros = 0;
        // Newer libplist releases deprecate this call in favour of a Unix-time one that older
        // releases (Debian's 2.2) lack; this one exists in both and keeps its meaning.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        plist_get_date_val(node, &seconds, &micros);
#pragma GCC diagnostic pop
        const qint64 ms = (static_cast<qint64>(seconds) + kAppleEpochOffset) * 1000 + micros / 1000;
        return QDateTime::fromMSecsSinceEpoch(ms, QTimeZone::utc());
    }
    default: // keys, uids and anything newer releases may add carry nothing we read
        return {};
    }
}

quint64 readBigEndian(const char* at, int size)
{
    quint64 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | static_cast<unsigned char>(at[i]);
    return value;
}

// libplist (2.2 at least) aborts on a binary list whose strings hold a NUL character, which a
// damaged or hostile file can easily contain. Every object of a binary list is reached through
// its offset table, so checking each string object there before libplist sees the bytes is
// enough. Anything inconsistent rejects the whole file: it would not parse anyway.
bool binaryStringsAreSafe(const QByteArray& bytes)
{
    constexpr qsizetype kHeader = 8;
    constexpr qsizetype kTrailer = 32;
    const qsizetype size = bytes.size();
    if (size < kHeader + kTrailer)
        return false;
    const char* data = bytes.constData();
    const char* trailer = data + size - kTrailer;
    const int offsetSize = static_cast<unsigned char>(trailer[6]);
    const quint64 objects = readBigEndian(trailer + 8, 8);
    const quint64 tableOffset = readBigEndian(trailer + 24, 8);
    if (offsetSize < 1 || offsetSize > 8 || tableOffset >= static_cast<quint64>(size - kTrailer))
        return false;
    const quint64 tableRoom = static_cast<quint64>(size - kTrailer) - tableOffset;
    if (objects > tableRoom / static_cast<quint64>(offsetSize))
        return false;
    const auto limit = static_cast<quint64>(size - kTrailer);
    for (quint64 index = 0; index < objects; ++index) {
        const quint64 offset = readBigEndian(data + tableOffset + index * offsetSize, offsetSize);
        if (offset >= limit)
            return false;
        const auto marker = static_cast<unsigned char>(data[offset]);
        const int type = marker >> 4;
        if (type != 0x5 && type != 0x6 && type != 0x7)
            continue;
        quint64 count = marker & 0x0f;
        quint64 start = offset + 1;
        if (count == 0x0f) { // the length follows as an integer object
            if (start >= limit)
                return false;
            const auto lengthMarker = static_cast<unsigned char>(data[start]);
            if ((lengthMarker >> 4) != 0x1 || (lengthMarker & 0x0f) > 3)
                return false;
            const int lengthSize = 1 << (lengthMarker & 0x0f);
            if (start + 1 + static_cast<quint64>(lengthSize) > limit)
                return false;
            count = readBigEndian(data + start + 1, lengthSize);
            start += 1 + static_cast<quint64>(lengthSize);
        }
        const quint64 unit = type == 0x6 ? 2 : 1;
        if (count > (limit - std::min(start, limit)) / unit)
            return false;
        for (quint64 i = 0; i < count; ++i) {
            const char* at = data + start + i * unit;
            if (unit == 1 ? at[0] == 0 : (at[0] == 0 && at[1] == 0))
                return false;
        }
    }
    return true;
}

} // namespace

QVariant parse(const QByteArray& bytes)
{
    // Lengths are 32-bit in libplist; nothing that large is a property list we want.
    if (bytes.isEmpty() || bytes.size() > std::numeric_limits<int32_t>::max())
        return {};
    const auto length = static_cast<uint32_t>(bytes.size());
    plist_t root = nullptr;
    if (plist_is_binary(bytes.constData(), length)) {
        if (!binaryStringsAreSafe(bytes))
            return {};
        plist_from_bin(bytes.constData(), length, &root);
    } else {
        // No XML document holds a NUL byte, and libplist would abort on a string that did.
        if (bytes.contains('\0'))
            return {};
        plist_from_xml(bytes.constData(), length, &root);
    }
    const PlistPtr owned(root);
    return convert(root, 0);
}

QVariantMap dictionary(const QByteArray& bytes)
{
    const QVariant value = parse(bytes);
    if (value.typeId() != QMetaType::QVariantMap)
        return {};
    return value.toMap();
}

QVariantMap readDictionary(const QString& path)
{
    return dictionary(readFile(NativePath::encode(path)));
}

QByteArray readFile(const QByteArray& nativePath, qint64 maxBytes)
{
    const int fd = ::open(nativePath.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return {};
    QByteArray bytes;
    struct stat info
    {
    };
    // Only regular files: a FIFO or device named Info.plist must not block or stream forever.
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0 && info.st_size <= maxBytes) {
        bytes.resize(static_cast<qsizetype>(info.st_size));
        qsizetype filled = 0;
        while (filled < bytes.size()) {
            const ssize_t got = ::read(fd, bytes.data() + filled, static_cast<size_t>(bytes.size() - filled));
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                break;
            filled += got;
        }
        bytes.truncate(filled);
    }
    ::close(fd);
    return bytes;
}

} // namespace nubo::PropertyList
