#pragma once

#include "ChatRequest.h"

#include <QByteArray>

#include <optional>

/// A request as compact JSON in UTF-8: one object of strings with the keys message and userId and,
/// with an image, imageBase64, imageMimeType and imageName.
///
/// It comes in blocks, and the image becomes base64 block by block, so that the largest image costs
/// neither the memory of its base64 nor a stalled frame.
class ChatRequestBody
{
public:
    /// Longest text of a request, in UTF-16 units.
    static constexpr qsizetype maximumTextLength = qsizetype(16) * 1024 * 1024;

    /// Nothing when a text is longer than `maximumTextLength`. A lone surrogate, which UTF-8 cannot
    /// say, is written as U+FFFD.
    static std::optional<ChatRequestBody> serialise(const ChatRequest &request);

    /// Length of the whole body in bytes.
    qint64 contentLength() const { return m_contentLength; }

    /// The next block of the body; empty after the last.
    QByteArray takeNextBlock();

private:
    ChatRequestBody(const QByteArray &head, const QByteArray &image, const QByteArray &tail);

    qint64 m_contentLength;
    QByteArray m_head;
    QByteArray m_image;
    qsizetype m_imageOffset = 0;
    QByteArray m_tail;
};
