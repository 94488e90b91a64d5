#pragma once

#include <QString>

#include <sys/types.h>

namespace farm {

/// Another user of this machine who runs the renderers of a farm that runs as root. Without one, all operations do nothing.
/// All throw std::runtime_error.
class RendererUser
{
public:
    RendererUser() = default;
    /// Throws when there is no such user, or when this program does not run as root. An empty name means none.
    explicit RendererUser(const QString& name);

    const QString& Name() const { return m_name; }

    /// Lets the user go through a folder, but not list it.
    void LetPass(const QString& folder) const;
    /// Lets the user read all files below a folder. They become read-only for everybody.
    void LetRead(const QString& folder) const;
    /// Lets the user write into a folder.
    void Give(const QString& folder) const;
    /// Takes over a file from the user, so that only the farm can use it.
    void TakeBack(const QString& file) const;

private:
    QString m_name;
    uid_t m_user = 0;
    gid_t m_group = 0;
};

} // namespace farm
