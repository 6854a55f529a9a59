#pragma once

// Writes real property lists for fixtures, XML or binary, through libplist itself.

#include <QByteArray>
#include <QDateTime>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>
#include <cstdlib>
#include <plist/plist.h>

namespace nubo::test {

enum class PlistFormat
{
    xml,
    binary
};

inline plist_t toPlist(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        plist_t dict = plist_new_dict();
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            plist_dict_set_item(dict, it.key().toUtf8().constData(), toPlist(it.value()));
        return dict;
    }
    case QMetaType::QVariantList: {
        plist_t array = plist_new_array();
        for (const QVariant& item : value.toList())
            plist_array_append_item(array, toPlist(item));
        return array;
    }
    case QMetaType::Bool:
        return plist_new_bool(value.toBool() ? 1 : 0);
    case QMetaType::Int:
    case QMetaType::LongLong:
        return plist_new_uint(static_cast<uint64_t>(value.toLongLong()));
    case QMetaType::Double:
        return plist_new_real(value.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return plist_new_data(bytes.constData(), static_cast<uint64_t>(bytes.size()));
    }
    case QMetaType::QDateTime: {
        const qint64 ms = value.toDateTime().toMSecsSinceEpoch() - 978307200LL * 1000;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        return plist_new_date(static_cast<int32_t>(ms / 1000), static_cast<int32_t>((ms % 1000) * 1000));
#pragma GCC diagnostic pop
    }
    default:
        return plist_new_string(value.toString().toUtf8().constData());
    }
}

inline QByteArray plistBytes(const QVariant& value, PlistFormat format)
{
    plist_t root = toPlist(value);
    char* out = nullptr;
    uint32_t length = 0;
    if (format == PlistFormat::xml)
        plist_to_xml(root, &out, &length);
    else
        plist_to_bin(root, &out, &length);
    QByteArray bytes(out, static_cast<qsizetype>(length));
    std::free(out);
    plist_free(root);
    return bytes;
}

/// A dictionary written by hand as the XML between <dict> and </dict> (as launchd jobs and apps
/// ship them), in the XML form or converted to the binary form by libplist.
inline QByteArray plistDict(const QByteArray& body, PlistFormat format = PlistFormat::xml)
{
    const QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                           "<plist version=\"1.0\"><dict>" +
                           body + "</dict></plist>\n";
    if (format == PlistFormat::xml)
        return xml;
    plist_t node = nullptr;
    plist_from_xml(xml.constData(), uint32_t(xml.size()), &node);
    if (!node)
        return {};
    char* out = nullptr;
    uint32_t length = 0;
    plist_to_bin(node, &out, &length);
    QByteArray binary(out, qsizetype(length));
    std::free(out);
    plist_free(node);
    return binary;
}

} // namespace nubo::test
