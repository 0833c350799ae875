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
    /// A glob for each suffix that the platform's type database has for these formats, with its
    /// letters in either case: choosers heed the case of names, and cameras write capitals.
    Q_PROPERTY(QStringList patterns READ patterns CONSTANT)

public:
    using QObject::QObject;

    static QStringList patterns();
};
