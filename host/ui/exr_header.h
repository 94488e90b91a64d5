#pragma once

#include <QSize>

#include <optional>

class QIODevice;

/// What the header of an OpenEXR file says about the size of its first picture. The library reserves memory by it, so it
/// is read here first.
struct ExrHeader
{
    QSize size; // pixels
    int channels = 0;
    QSize tile; // empty for a picture in lines

    /// @param device at the beginning of the file.
    /// @return none when the header is damaged or describes no flat picture.
    static std::optional<ExrHeader> Read(QIODevice& device);

    /// Whether reading the picture takes more memory than pictures may.
    bool IsTooLarge() const;
};
