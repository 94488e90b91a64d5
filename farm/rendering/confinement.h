#pragma once

#include <QString>

namespace farm {

/// What a renderer may touch of this machine: programs, libraries and fonts to run with, files below one folder to read
/// and below another one to write. It may neither look at nor change anything else.
struct Reach
{
    QString readable;
    QString writable;
};

/// The kernel's part of it (Landlock): prepared before the renderer's process is made, entered in it.
class Confinement
{
public:
    /// Whether this machine's kernel can confine a process.
    static bool IsSupported();

    /// @param program is the renderer's executable, with its folder.
    Confinement(const Reach& reach, const QString& program);
    ~Confinement();
    Confinement(const Confinement&) = delete;
    Confinement& operator=(const Confinement&) = delete;

    /// From now on the calling process, and whatever it starts, has this reach. Makes system calls only, as is needed
    /// between fork and exec. Returns whether that is so; true as well where the kernel cannot do it.
    bool Enter() const;

private:
    void Allow(const QString& path, quint64 access) const;

    int m_ruleset = -1;
};

} // namespace farm
