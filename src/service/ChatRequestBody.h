#pragma once

#include "ChatRequest.h"

#include <QByteArray>
#include <QIODevice>

#include <memory>

/// A request as compact JSON in UTF-8: one object of strings with the keys message and userId and,
/// with an image, imageBase64, imageMimeType and imageName.
///
/// The image becomes base64 piece by piece as it is read, so that an image of 12 MiB costs the
/// main thread neither 16 MiB more memory nor a stalled frame. The device is sequential: nothing
/// that goes wrong on the way can make the network code read it, and so send it, twice.
class ChatRequestBody : public QIODevice
{
    Q_OBJECT

public:
    /// Longest text of a request, in UTF-16 units: as much as the base64 of the largest image.
    static constexpr qsizetype maximumTextLength = qsizetype(16) * 1024 * 1024;

    /// Ready to be read; null when a text is longer than `maximumTextLength`. A lone surrogate,
    /// which UTF-8 cannot say, is written as U+FFFD.
    static std::unique_ptr<ChatRequestBody> serialise(const ChatRequest &request);

    /// Length of the whole body in bytes.
    qint64 contentLength() const { return m_contentLength; }

    bool isSequential() const override { return true; }
    bool seek(qint64) override { return false; }

protected:
    qint64 readData(char *data, qint64 maximumSize) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    ChatRequestBody(const QByteArray &head, const QByteArray &image, const QByteArray &tail);

    /// What follows the blocks taken so far; empty at the end.
    QByteArray takeNextBlock();

    qint64 m_contentLength;
    /// The block being read and how much of it has been.
    QByteArray m_block;
    qsizetype m_blockOffset = 0;
    QByteArray m_image;
    qsizetype m_imageOffset = 0;
    QByteArray m_tail;
};
