#pragma once

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

/// How files of the picture formats that the program takes are named.
class ImageFileNames : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// A glob for each of suffixes(), with its letters in either case: choosers distinguish cases,
    /// and cameras write capitals.
    Q_PROPERTY(QStringList patterns READ patterns CONSTANT)

public:
    using QObject::QObject;

    /// What the names end in, behind a dot, in small letters: all that the platform's type database
    /// or the table of formats has.
    static QStringList suffixes();
    static QStringList patterns();
};
