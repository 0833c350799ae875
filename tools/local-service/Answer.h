#pragma once

#include <QString>
#include <QStringList>

/// A whole reply, before it is paced out.
struct Answer
{
    /// In order, without line ends; none is empty.
    QStringList lines;
    /// What the question was about, worth mentioning in a later answer; empty when nothing is.
    QString subject;
};
