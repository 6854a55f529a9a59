#include "MapPictureNode.h"

#include <QQuickWindow>
#include <QSGImageNode>

#include <algorithm>

namespace nubo {

void MapPictureNode::show(QQuickWindow& window, const Layers& layers, const PackedCircle& now, QSizeF view,
                          double margin)
{
    for (size_t i = 0; i < layers.size(); ++i) {
        const auto& [picture, opacity] = layers[i];
        const MapPicture::Placement placed =
            picture && opacity > 0 ? picture->placed(now, view, margin) : MapPicture::Placement{};
        Layer& layer = m_layers[i];
        if (placed.target.isEmpty()) {
            if (layer.opacity)
                layer.opacity->setOpacity(0);
            continue;
        }
        auto& texture = m_textures[picture->id];
        if (!texture)
            texture.reset(window.createTextureFromImage(picture->image));
        const bool fresh = !layer.opacity;
        if (fresh) {
            layer.opacity = new QSGOpacityNode;
            layer.image = window.createImageNode();
            layer.image->setFiltering(QSGTexture::Linear);
            layer.opacity->appendChildNode(layer.image);
        }
        if (layer.picture != picture->id) {
            layer.image->setTexture(texture.get());
            layer.picture = picture->id;
        }
        layer.image->setRect(placed.target);
        layer.image->setSourceRect(placed.source);
        layer.opacity->setOpacity(opacity);
        // Whole, with its texture, before the renderer sees it.
        if (fresh && i == 0)
            prependChildNode(layer.opacity);
        else if (fresh)
            appendChildNode(layer.opacity);
    }
    // Textures no layer shows any more go; a hidden layer keeps its own until it shows another.
    std::erase_if(m_textures, [this](const auto& entry) {
        return std::none_of(m_layers.begin(), m_layers.end(),
                            [&entry](const Layer& layer) { return layer.picture == entry.first; });
    });
}

} // namespace nubo
