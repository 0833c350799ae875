#include "ContinuousTexture.h"

#include "ContinuousCorners.h"

#include <QSGGeometryNode>
#include <QSGTextureMaterial>
#include <QSGTextureProvider>

namespace {

class TextureNode : public QSGGeometryNode
{
public:
    TextureNode()
    {
        setFlag(UsePreprocess);
        setFlag(OwnsGeometry);
        setMaterial(&m_material);
        m_material.setFiltering(QSGTexture::Linear);
    }

    void setTexture(QSGTexture *texture)
    {
        m_material.setTexture(texture);
        markDirty(DirtyMaterial);
    }

    /// Lays the texture over a convex `outline` within `size`.
    void setOutline(const QPolygonF &outline, QSizeF size)
    {
        const auto count = static_cast<int>(outline.size());
        auto *shape = new QSGGeometry(QSGGeometry::defaultAttributes_TexturedPoint2D(), count);
        shape->setDrawingMode(QSGGeometry::DrawTriangleStrip);
        // From one side to the other and back, which not all graphics interfaces do by themselves.
        for (int i = 0; i < count; ++i) {
            const QPointF point = outline.at(i % 2 == 0 ? i / 2 : count - 1 - i / 2);
            shape->vertexDataAsTexturedPoint2D()[i].set(float(point.x()), float(point.y()),
                                                        float(point.x() / size.width()),
                                                        float(point.y() / size.height()));
        }
        setGeometry(shape);
        markDirty(DirtyGeometry);
    }

    void preprocess() override
    {
        auto *dynamic = qobject_cast<QSGDynamicTexture *>(m_material.texture());
        if (dynamic && dynamic->updateTexture())
            markDirty(DirtyMaterial);
    }

private:
    QSGTextureMaterial m_material;
};

} // namespace

ContinuousTexture::ContinuousTexture(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &ContinuousTexture::sourceChanged, this, &QQuickItem::update);
    connect(this, &ContinuousTexture::radiusChanged, this, &QQuickItem::update);
}

QSGNode *ContinuousTexture::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    const auto *provider = m_source ? m_source->textureProvider() : nullptr;
    auto *texture = provider ? provider->texture() : nullptr;
    if (!texture || size().isEmpty()) {
        delete node;
        return nullptr;
    }
    auto *shape = static_cast<TextureNode *>(node);
    if (!shape)
        shape = new TextureNode;
    shape->setTexture(texture);
    QPolygonF outline = continuousRoundedPath(boundingRect(), m_radius).toFillPolygon();
    outline.removeLast(); // the first point again
    shape->setOutline(outline, size());
    return shape;
}

void ContinuousTexture::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        update();
}
