#pragma once

#include <QFile>

/// @return whether the file now holds the content and nothing else.
inline bool WriteFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// @return the whole content; empty when the file cannot be read.
inline QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
