#pragma once

#include "Refusal.h"

#include <QString>

/// Why the model gave no answer, or only a part of one.
enum class ModelFailure {
    /// Nothing listens at its address, or the address does not exist.
    Unreachable,
    /// Its certificate is not one that this machine trusts.
    Untrusted,
    /// 401 or 403.
    KeyRefused,
    /// 404: no such model, or no such service at the address.
    NotFound,
    /// 429.
    TooManyQuestions,
    /// Any other status than 200.
    OtherStatus,
    /// It reported an error in the middle of what began well.
    ReportedError,
    /// What it sent is no chat completion.
    NotUnderstood,
    /// It sent nothing for as long as is waited.
    Silent,
    /// It closed the connection before the end.
    BrokenOff,
    /// It ended well without a word.
    Empty,
};

/// What a client is told when nothing was sent to it yet: 504 for silence, else 502.
Refusal refusal(ModelFailure failure);

/// What the log says. It quotes nothing that the model said, since that may quote the question.
QString logReason(ModelFailure failure);
