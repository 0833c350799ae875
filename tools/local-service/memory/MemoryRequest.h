#pragma once

#include "UserContext.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What a person may ask about what is remembered of them.
enum class MemoryRequest {
    Forget,
    Recall,
};

/// What `message` asks, when it asks for nothing else: "Olvidá lo que sabés de mí", "¿Qué recordás
/// de mí?" and the ways in which people say so.
std::optional<MemoryRequest> memoryRequest(const QString &message);

/// The answer to a request to forget: whether it was done, and what it does not touch.
QStringList forgottenAnswer(bool isForgotten);

/// What is remembered, told to the person it is about.
QStringList recalledAnswer(const UserContext &context);
