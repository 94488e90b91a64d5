#pragma once

#include <QImage>
#include <QMetaType>
#include <QString>
#include <QStringList>

/// A picture read from a file, or the reason why it could not be read.
struct PictureFile
{
    enum Error { None, Missing, NotAPicture, TooLarge, Broken };

    QImage image;
    Error error = None;

    /// Reads a file from an untrusted source: the format is recognised by its content, and its size is checked before it
    /// is decoded. Accepts at most 16384 pixels per side and 512 MiB. May be called in any thread.
    static PictureFile Read(const QString& file);

    /// @return the paths of the pictures in the same folder, including the file itself, sorted by name.
    static QStringList InSameFolder(const QString& file);
};

Q_DECLARE_METATYPE(PictureFile)
