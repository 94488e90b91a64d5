#include "farm/runner/hidden_paths.h"

#include <QFile>
#include <QList>

#include <optional>

namespace farm {

namespace {

struct Mount
{
    QByteArray device;
    /// The path of the mounted folder on its disk.
    QString root;
    QString place;
};

/// Spaces and backslashes in paths are written as octal numbers.
QString Decoded(const QByteArray& text)
{
    constexpr int Digits = 3;
    constexpr int Octal = 8;
    QByteArray decoded;
    for (int at = 0; at < text.size(); ++at) {
        bool ok = false;
        const int code = text[at] == '\\' ? text.mid(at + 1, Digits).toInt(&ok, Octal) : 0;
        decoded += ok ? static_cast<char>(code) : text[at];
        at += ok ? Digits : 0;
    }
    return QFile::decodeName(decoded);
}

QList<Mount> ReadMounts(const QByteArray& text)
{
    constexpr int Device = 2;
    constexpr int Root = 3;
    constexpr int Place = 4;
    QList<Mount> mounts;
    for (const QByteArray& line : text.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() > Place)
            mounts.append({fields[Device], Decoded(fields[Root]), Decoded(fields[Place])});
    }
    return mounts;
}

/// `path`, which is within `from`, with `from` replaced by `to`.
QString Moved(const QString& path, const QString& from, const QString& to)
{
    const QString rest = path.mid(from == QLatin1String("/") ? 0 : from.size());
    return rest.isEmpty() || rest == QLatin1String("/") ? to : to == QLatin1String("/") ? rest : to + rest;
}

} // namespace

bool IsWithin(const QString& path, const QString& folder)
{
    return folder == QLatin1String("/") || path == folder || path.startsWith(folder + QLatin1Char('/'));
}

QStringList NamesOf(const QString& folder, const QByteArray& mounts)
{
    const QList<Mount> all = ReadMounts(mounts);
    std::optional<Mount> own;
    for (const Mount& mount : all) {
        // When several mounts share a place, the last one is in use.
        if (IsWithin(folder, mount.place) && (!own || mount.place.size() >= own->place.size()))
            own = mount;
    }
    QStringList names {folder};
    if (!own)
        return names;
    const QString onDisk = Moved(folder, own->place, own->root);
    for (const Mount& mount : all) {
        if (mount.device != own->device)
            continue;
        if (IsWithin(onDisk, mount.root))
            names.append(Moved(onDisk, mount.root, mount.place));
        else if (IsWithin(mount.root, onDisk) && !IsWithin(mount.place, folder))
            names.append(mount.place);
    }
    names.removeDuplicates();
    return names;
}

} // namespace farm
