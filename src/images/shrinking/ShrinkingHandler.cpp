#include "ShrinkingHandler.h"

#include "ImageLimits.h"

#include <QIODevice>
#include <QImage>
#include <QVariant>

ShrinkingHandler::ShrinkingHandler(const ShrinkingReader *reader)
    : m_reader(reader)
{ }

bool ShrinkingHandler::canRead() const
{
    return m_header || !device()->atEnd();
}

bool ShrinkingHandler::open()
{
    if (m_header)
        return true;
    m_bytes = device()->read(maximumImageBytes);
    m_header = m_reader->header(m_bytes);
    return m_header.has_value();
}

bool ShrinkingHandler::read(QImage *image)
{
    if (!open() || m_header->size.isEmpty())
        return false;
    const QSize size = m_scaledSize.isEmpty() ? m_header->size : m_scaledSize;
    *image = m_reader->decoded(m_bytes, size.boundedTo(m_header->size));
    return !image->isNull();
}

bool ShrinkingHandler::supportsOption(ImageOption option) const
{
    return option == Size || option == ScaledSize || option == ImageTransformation;
}

QVariant ShrinkingHandler::option(ImageOption option) const
{
    if (option == ScaledSize)
        return m_scaledSize;
    // The next two options need the file's header, which is read into members although option() is
    // const.
    if (!const_cast<ShrinkingHandler *>(this)->open())
        return {};
    if (option == Size)
        return m_header->size;
    if (option == ImageTransformation)
        return int(m_header->transformation);
    return {};
}

void ShrinkingHandler::setOption(ImageOption option, const QVariant &value)
{
    if (option == ScaledSize)
        m_scaledSize = value.toSize();
}
