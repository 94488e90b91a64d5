#pragma once

#include "farm/runner/run_order.h"

namespace farm {

/// Confines a process to its reach by means of the kernel (Landlock). It is prepared before the fork, and the new
/// process enters it afterwards.
class Confinement
{
public:
    /// Whether this machine's kernel can limit a process.
    static bool IsSupported();

    /// Throws std::runtime_error when the kernel supports it but the rules cannot be made.
    /// @param program is the full path of the renderer's executable.
    Confinement(const Reach& reach, const QString& program);
    ~Confinement();
    Confinement(const Confinement&) = delete;
    Confinement& operator=(const Confinement&) = delete;

    /// Whether the process will be able to read the path.
    bool Reaches(const QString& path) const;

    /// Permanently limits the calling process and all processes that it starts. Makes only system calls, so it is safe
    /// between fork and exec. Returns false when the process could not be limited although the kernel supports it.
    bool Enter() const;

private:
    void AllowSystem(const QString& program);
    /// Allows a path without the hidden folder.
    void AllowAround(const QString& path, quint64 access);
    /// Allows a path that the farm has chosen, even in the hidden folder.
    void AllowChosen(const QString& path, quint64 access);
    void Allow(const QString& path, quint64 access);

    /// All paths of the hidden folder, see NamesOf().
    QStringList m_hidden;
    QStringList m_allowed;
    bool m_confined;
    int m_ruleset = -1;
};

} // namespace farm
