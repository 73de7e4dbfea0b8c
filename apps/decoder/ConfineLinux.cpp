// Confines a process on Linux: resource limits, and a filter that allows the system calls of reading and computing.
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <vector>

#include "apps/decoder/Confine.h"
#include "apps/decoder/Limits.h"

namespace apps {
namespace {

// What memory, the streams and the end of the process need.
constexpr std::array kAllowed = {SYS_read,  SYS_write, SYS_munmap,     SYS_mremap,       SYS_brk,      SYS_madvise,
                                 SYS_futex, SYS_exit,  SYS_exit_group, SYS_rt_sigreturn, SYS_getrandom};

// What only a decoder that was taken over would ask for: files and their names, sockets, programs, processes and their
// memory, signals, the kernel's own settings. The process ends there. clone3 is not among them: a C library asks for it
// first, and for clone when the kernel does not know it.
constexpr std::array kFatal = {
    SYS_openat, SYS_openat2, SYS_open_by_handle_at, SYS_unlinkat, SYS_renameat, SYS_renameat2, SYS_linkat,
    SYS_symlinkat, SYS_mkdirat, SYS_mknodat, SYS_fchmodat, SYS_fchownat, SYS_truncate, SYS_chdir, SYS_chroot, SYS_mount,
    SYS_umount2, SYS_pivot_root, SYS_socket, SYS_socketpair, SYS_connect, SYS_bind, SYS_listen, SYS_accept, SYS_accept4,
    SYS_execve, SYS_execveat, SYS_clone, SYS_unshare, SYS_setns, SYS_ptrace, SYS_process_vm_readv,
    SYS_process_vm_writev, SYS_pidfd_open, SYS_pidfd_getfd, SYS_pidfd_send_signal, SYS_kill, SYS_tkill, SYS_tgkill,
    SYS_rt_sigqueueinfo, SYS_rt_tgsigqueueinfo, SYS_setuid, SYS_setgid, SYS_setresuid, SYS_setresgid, SYS_capset,
    SYS_keyctl, SYS_add_key, SYS_bpf, SYS_io_uring_setup, SYS_userfaultfd, SYS_perf_event_open, SYS_init_module,
    SYS_finit_module,
    // Of one architecture only.
    KELVA_OLDER_CALLS};

sock_filter Step(unsigned code, unsigned value, unsigned ifTrue = 0, unsigned ifFalse = 0) {
  return {static_cast<__u16>(code), static_cast<__u8>(ifTrue), static_cast<__u8>(ifFalse), value};
}

sock_filter LoadField(std::size_t offset) {
  return Step(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
}

// Jumps over `steps` steps unless the call has this number.
sock_filter UnlessCall(long number, unsigned steps) {
  return Step(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, steps);
}

// What is in neither list is refused as a kernel refuses a call that it does not have: then a C library of tomorrow does
// without it. That is as safe as an end of the process, since the call is not made; and a picture is drawn.
std::vector<sock_filter> Filter() {
  const sock_filter allow = Step(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
  const sock_filter refuse = Step(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS);
  const sock_filter kill = Step(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS);
  std::vector<sock_filter> steps = {LoadField(offsetof(seccomp_data, arch)),
                                    Step(BPF_JMP | BPF_JEQ | BPF_K, KELVA_AUDIT_ARCH, 1, 0), kill,
                                    LoadField(offsetof(seccomp_data, nr))};
  for (const long number : kAllowed) steps.insert(steps.end(), {UnlessCall(number, 1), allow});
  for (const long number : kFatal) steps.insert(steps.end(), {UnlessCall(number, 1), kill});
  // Memory, but none that could be run. The low half of the argument holds all flags.
  const sock_filter loadProtection = LoadField(offsetof(seccomp_data, args) + 2 * sizeof(__u64));
  const sock_filter unlessExecutable = Step(BPF_JMP | BPF_JSET | BPF_K, PROT_EXEC, 0, 1);
  steps.insert(steps.end(), {UnlessCall(SYS_mprotect, 4), loadProtection, unlessExecutable, kill, refuse});
  steps.insert(steps.end(), {UnlessCall(SYS_mmap, 4), loadProtection, unlessExecutable, kill, allow});
  steps.push_back(refuse);
  return steps;
}

}  // namespace

bool Confine() {
  std::vector<sock_filter> steps = Filter();
  const sock_fprog program{static_cast<unsigned short>(steps.size()), steps.data()};
  return ::prctl(PR_SET_DUMPABLE, 0) == 0 && LimitResources() && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace apps
