#pragma once

#include <QString>

#include <optional>

/// The topic in a line such as "[[repasar: nefrona]]", by which the model says that a student got
/// a practice question wrong; at most 60 characters of it. Nothing when the line is no such mark.
std::optional<QString> reviewMark(const QString &line);
