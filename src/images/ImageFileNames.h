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
    /// The patterns, with blanks between them.
    Q_PROPERTY(QString filter READ filter CONSTANT)

public:
    using QObject::QObject;

    /// A glob for each suffix that the platform's type database or the table of formats has, with
    /// its letters in either case: choosers heed the case of names, and cameras write capitals.
    static QStringList patterns();
    static QString filter() { return patterns().join(QLatin1Char(' ')); }
};
