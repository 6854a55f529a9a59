#pragma once

#include <QHash>
#include <QQuickImageProvider>

#include <memory>
#include <mutex>

namespace nubo {

class AppIcons;

/// Serves "image://appicon/<id>" to the views, the address made by `IconSource::of`: the platform's picture
/// of an application or a file, drawn on Qt Quick's image-loading threads and kept for the next
/// request of the same size. A path the platform has no picture for gives one transparent pixel
/// (the engine reports an empty image as a failure), and the view shows its letter tile instead.
class AppIconProvider final : public QQuickImageProvider
{
public:
    explicit AppIconProvider(std::shared_ptr<const AppIcons> icons);

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    std::shared_ptr<const AppIcons> m_icons;
    std::mutex m_lock;
    QHash<QString, QImage> m_cache;
};

} // namespace nubo
