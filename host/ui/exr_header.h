#pragma once

#include <QSize>

#include <optional>

class QIODevice;

/// The size of the first picture in an OpenEXR file, from the file's header. The library reserves memory by this size, so
/// it is checked before the library reads the file.
struct ExrHeader
{
    QSize size; // pixels
    int channels = 0;
    QSize tile; // empty for a picture without tiles

    /// @param device must be at the beginning of the file.
    /// @return none when the header is damaged or describes no flat picture.
    static std::optional<ExrHeader> Read(QIODevice& device);

    /// Whether reading the picture takes more memory than pictures may.
    bool IsTooLarge() const;
};
