#pragma once

#include "farm/runner/confinement.h"
#include "farm/runner/run_order.h"

#include <sys/types.h>
#include <vector>

namespace farm {

/// Starts the process of a renderer as its order says. The process ends with the thread that has started it.
class Renderer
{
public:
    /// Throws std::runtime_error when the order cannot be carried out on this machine.
    explicit Renderer(const RunOrder& order);

    /// Starts it. @return a non-blocking descriptor for reading its output. Throws std::runtime_error.
    int Start();
    pid_t Process() const { return m_process; }

private:
    void FindUser();
    void MakeEnvironment();
    QString ReachableFolders(const QString& searchPath) const;
    [[noreturn]] void Become(int output, int failure) const;
    bool TakeUser() const;
    void TakeLimits() const;

    RunOrder m_order;
    QString m_program;
    Confinement m_confinement;
    std::vector<QByteArray> m_environment;
    uid_t m_user;
    gid_t m_group;
    pid_t m_runner;
    int m_tasksBefore = 0;
    pid_t m_process = -1;
};

} // namespace farm
