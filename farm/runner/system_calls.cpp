#include "farm/runner/system_calls.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <linux/audit.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <linux/securebits.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace farm::SystemCalls {

namespace {

#if defined(__x86_64__)
constexpr unsigned Architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned Architecture = AUDIT_ARCH_AARCH64;
#else
constexpr unsigned Architecture = 0;
#endif

// The last three are newer than the headers of this system; their numbers are the same on all architectures.
constexpr unsigned Forbidden[] = {
#ifdef SYS_chmod
    SYS_chmod,
#endif
    SYS_fchmod, SYS_fchmodat, SYS_setxattr, SYS_lsetxattr, SYS_fsetxattr, SYS_removexattr, SYS_lremovexattr,
    SYS_fremovexattr, 452 /* fchmodat2 */, 463 /* setxattrat */, 466 /* removexattrat */};
constexpr std::size_t ForbiddenCount = sizeof(Forbidden) / sizeof(Forbidden[0]);
// The calls of x86-64's second interface (x32) carry this bit.
constexpr unsigned SecondInterface = 0x40000000;
constexpr std::size_t Head = 4;
constexpr std::size_t Tail = 2;

constexpr sock_filter Statement(int code, unsigned value)
{
    return {static_cast<unsigned short>(code), 0, 0, value};
}

constexpr sock_filter Jump(int code, unsigned value, std::size_t ifTrue, std::size_t ifFalse)
{
    return {static_cast<unsigned short>(code), static_cast<unsigned char>(ifTrue),
        static_cast<unsigned char>(ifFalse), value};
}

} // namespace

bool CanForbidAttributes()
{
    return Architecture != 0 && ::prctl(PR_GET_SECCOMP) >= 0;
}

bool ForbidAttributes()
{
    if (!CanForbidAttributes())
        return true;
    std::array<sock_filter, Head + ForbiddenCount + Tail> filter {};
    constexpr std::size_t Refusal = filter.size() - 1;
    // A jump counts from the next statement. Calls of other architectures are refused as well.
    filter[0] = Statement(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch));
    filter[1] = Jump(BPF_JMP | BPF_JEQ | BPF_K, Architecture, 0, Refusal - 2);
    filter[2] = Statement(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
    filter[3] = Jump(BPF_JMP | BPF_JGE | BPF_K, SecondInterface, Refusal - 4, 0);
    std::size_t next = Head;
    for (const unsigned call : Forbidden) {
        filter.at(next) = Jump(BPF_JMP | BPF_JEQ | BPF_K, call, Refusal - next - 1, 0);
        ++next;
    }
    filter.at(next) = Statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    filter[Refusal] = Statement(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM);
    sock_fprog program {static_cast<unsigned short>(filter.size()), filter.data()};
    return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

void DropCapabilities()
{
    if (::geteuid() != 0)
        return;
    for (int capability = 0; ::prctl(PR_CAPBSET_READ, capability) >= 0; ++capability)
        ::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0);
    // Otherwise root would regain its capabilities with the next program.
    ::prctl(PR_SET_SECUREBITS, SECBIT_NOROOT | SECBIT_NOROOT_LOCKED, 0, 0, 0);
    __user_cap_header_struct header {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    ::syscall(SYS_capset, &header, none);
}

} // namespace farm::SystemCalls
