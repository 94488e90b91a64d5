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
    /// Throws when there is no such user, or when this program is not root's. An empty name stands for no other user.
    explicit RendererUser(const QString& name);

    const QString& Name() const { return m_name; }

    /// Lets the user go through a folder, but not list it.
    void LetPass(const QString& folder) const;
    /// Lets the user read all files below a folder. They become read-only for everybody.
    void LetRead(const QString& folder) const;
    /// Lets the user write into a folder.
    void Give(const QString& folder) const;
    /// Closes a file of the user to all but the farm.
    void TakeBack(const QString& file) const;

private:
    QString m_name;
    uid_t m_user = 0;
    gid_t m_group = 0;
};

} // namespace farm
