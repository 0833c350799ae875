#pragma once

#include "StudyConcept.h"

#include <QList>
#include <QString>

/// A question to practise with.
struct PracticeQuestion
{
    QString text;
    QString answer;
};

/// The questions that the note of `known` has and those that its other lines make: its definition,
/// its order, what tells it apart, its frequent error, its case.
QList<PracticeQuestion> practiceQuestions(const StudyConcept &known);
