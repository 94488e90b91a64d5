#pragma once

#include <QColor>
#include <QDebug>
#include <QImage>

/// The largest difference of two pictures in a colour, from 0 to 255.
inline int Difference(const QImage& first, const QImage& second)
{
    if (first.size() != second.size())
        return 255;
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QColor one = first.pixel(x, y);
            const QColor two = second.pixel(x, y);
            for (const int difference :
                {one.red() - two.red(), one.green() - two.green(), one.blue() - two.blue()})
                largest = qMax(largest, qAbs(difference));
        }
    }
    return largest;
}

/// Painted from a picture, a blend of colours may be rounded differently.
inline bool LookAlike(const QImage& first, const QImage& second)
{
    constexpr int Rounding = 2;
    const int difference = Difference(first, second);
    if (difference > Rounding)
        qWarning() << "The pictures differ by" << difference << "of 255";
    return difference <= Rounding;
}
