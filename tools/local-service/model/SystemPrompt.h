#pragma once

#include "UserContext.h"

#include <QString>

struct StudyConcept;

/// What the model is told before the conversation: the instructions of model/instrucciones.md, what
/// is remembered of the student, and the note that the question is about, if there is one.
QString systemPrompt(const UserContext &context, const StudyConcept *note);
