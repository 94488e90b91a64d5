#include "processes/bound_process.h"

#ifdef Q_OS_LINUX
#include <csignal>
#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

// While this thread launches a bound process, the id of this process; otherwise 0. The child inherits it.
thread_local pid_t launching = 0;

// Runs in every child of this program right after the fork: system calls only.
void Bind()
{
    if (launching == 0)
        return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have been killed before the call.
    if (::getppid() != launching)
        ::_exit(EXIT_FAILURE);
}

} // namespace

void BoundProcess::Launch()
{
    [[maybe_unused]] static const int registered = ::pthread_atfork(nullptr, nullptr, Bind);
    launching = ::getpid();
    start();
    launching = 0;
}

void BoundProcess::Unbind()
{
    ::prctl(PR_SET_PDEATHSIG, 0);
}
#else
void BoundProcess::Launch()
{
    start();
}

void BoundProcess::Unbind() { }
#endif
