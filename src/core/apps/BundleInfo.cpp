#include "core/apps/BundleInfo.h"

#include "core/plist/PropertyList.h"

#include <QFile>

#include <sys/stat.h>

namespace nubo::BundleInfo {

QVariantMap dictionary(const QByteArray& nativePath)
{
    struct stat info {};
    // A bundle is a folder; following a link here matches how the system opens a bundle by path.
    if (::stat(nativePath.constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return {};
    QByteArray bytes = PropertyList::readFile(nativePath + "/Contents/Info.plist");
    if (bytes.isEmpty())
        bytes = PropertyList::readFile(nativePath + "/Info.plist");
    return PropertyList::dictionary(bytes);
}

QVariantMap dictionary(const QString& path)
{
    return dictionary(QFile::encodeName(path));
}

std::optional<QString> text(const QVariantMap& dictionary, const QString& key)
{
    const auto found = dictionary.constFind(key);
    if (found == dictionary.constEnd() || found->typeId() != QMetaType::QString)
        return std::nullopt;
    return found->toString();
}

std::optional<QString> identifier(const QVariantMap& dictionary)
{
    std::optional<QString> value = text(dictionary, QStringLiteral("CFBundleIdentifier"));
    if (value && value->isEmpty())
        return std::nullopt;
    return value;
}

} // namespace nubo::BundleInfo
