// The assistant on the student's own machine: an HTTPS service that answers from Spanish study
// notes compiled into it. It shares no code with the program, so that neither tests itself.
#pragma once

#include "AttachedImage.h"
#include "Refusal.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <variant>

/// One question as it came over the wire, already checked.
struct ChatQuestion
{
    /// White space at both ends removed; empty only when there is an image.
    QString message;
    /// Whoever asks, as the sender identifies itself; may be empty.
    QString userId;
    std::optional<AttachedImage> image;
};

/// The question in `body`, a JSON object of strings: "message" and "userId", and with an image
/// "imageBase64", "imageMimeType" and "imageName". Other keys are ignored. Base64 must have its
/// padding and no stray bits.
std::variant<ChatQuestion, Refusal> parseChatQuestion(const QByteArray &body);
