#pragma once

#include "MapPicture.h"

#include <QSGOpacityNode>
#include <QSGTexture>

#include <array>
#include <memory>
#include <unordered_map>
#include <utility>

class QQuickWindow;
class QSGImageNode;

namespace nubo {

/// The map's scene-graph node: two layers, each one picture's image under an opacity, placed for
/// the camera of the frame and cut to the view. A layer is made the first time it shows
/// something and kept for the life of the item; a texture is made once per picture and kept
/// while a layer shows it. The node itself is an opacity node (always opaque) rather than a
/// plain one: the software renderer keeps the place of opacity nodes, and a layer made later
/// below a plain node would be drawn at the window's corner.
class MapPictureNode : public QSGOpacityNode
{
public:
    /// The pictures of a frame, bottom first, each with its opacity; a null one hides its layer.
    using Layers = std::array<std::pair<const MapPicture*, double>, 2>;

    /// Shows `layers` under the camera `now` in a view of `view` fitted with `margin`.
    void show(QQuickWindow& window, const Layers& layers, const PackedCircle& now, QSizeF view,
              double margin);

private:
    struct Layer
    {
        QSGOpacityNode* opacity = nullptr;
        QSGImageNode* image = nullptr;
        quint64 picture = 0;
    };
    std::array<Layer, 2> m_layers;
    std::unordered_map<quint64, std::unique_ptr<QSGTexture>> m_textures;
};

} // namespace nubo
