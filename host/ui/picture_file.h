#pragma once

#include <QImage>
#include <QMetaType>

/// A picture read from a file, or the reason why it could not be read.
struct PictureFile
{
    enum Error { None, Missing, NotAPicture, TooLarge, Broken };

    QImage image;
    Error error = None;

    static constexpr int LongestSide = 16384;                // pixels
    static constexpr qint64 MostBytes = 512LL * 1024 * 1024; // of a decoded picture
};

Q_DECLARE_METATYPE(PictureFile)
