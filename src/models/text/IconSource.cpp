#include "models/text/IconSource.h"

#include "core/files/NativePath.h"

#include <QByteArray>

namespace nubo::IconSource {

namespace {

constexpr auto kEncoding = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

} // namespace

QString of(const QString& path)
{
    if (path.isEmpty())
        return {};
    return QStringLiteral("image://appicon/") + QString::fromLatin1(NativePath::encode(path).toBase64(kEncoding));
}

QString pathOf(const QString& id)
{
    const auto decoded =
        QByteArray::fromBase64Encoding(id.toLatin1(), kEncoding | QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? NativePath::decode(*decoded) : QString();
}

} // namespace nubo::IconSource
