#pragma once

#include "farm/runner/run_order.h"

namespace farm {

/// Limits a process to its reach by means of the kernel (Landlock). The farm prepares it; the new process enters it.
class Confinement
{
public:
    /// Whether this machine's kernel can confine a process.
    static bool IsSupported();

    /// @param program is the full path of the renderer's executable.
    Confinement(const Reach& reach, const QString& program);
    ~Confinement();
    Confinement(const Confinement&) = delete;
    Confinement& operator=(const Confinement&) = delete;

    /// Limits the calling process and all processes that it starts. Makes only system calls, so it is safe between fork
    /// and exec. Returns false when the process could not be limited although the kernel supports it.
    bool Enter() const;

private:
    void Allow(const QString& path, quint64 access) const;

    int m_ruleset = -1;
};

} // namespace farm
