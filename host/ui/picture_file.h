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

    static constexpr int LongestSide = 16384;                // pixels
    static constexpr qint64 MostBytes = 512LL * 1024 * 1024; // of a decoded picture

    /// Reads a file from an untrusted source: the format is recognised by its content, and its size is checked before it
    /// is decoded. May be called in any thread.
    static PictureFile Read(const QString& file);

    /// @return the names of the pictures in the same folder, including the file itself, sorted.
    static QStringList InSameFolder(const QString& file);
};

Q_DECLARE_METATYPE(PictureFile)
