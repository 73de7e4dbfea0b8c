// Confines a process on Linux: resource limits, and a filter that allows the system calls of reading and computing.
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <array>
#include <cstddef>
#include <vector>

#include "apps/kelva/thumbnail/Confine.h"
#include "apps/kelva/thumbnail/Limits.h"

namespace apps {
namespace {

// What memory, the streams and the end of the process need.
constexpr std::array kAllowed = {SYS_read,  SYS_write, SYS_munmap,     SYS_mremap,       SYS_brk,      SYS_madvise,
                                 SYS_futex, SYS_exit,  SYS_exit_group, SYS_rt_sigreturn, SYS_getrandom};

sock_filter Step(unsigned code, unsigned value, unsigned ifTrue = 0, unsigned ifFalse = 0) {
  return {static_cast<__u16>(code), static_cast<__u8>(ifTrue), static_cast<__u8>(ifFalse), value};
}

sock_filter LoadField(std::size_t offset) {
  return Step(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
}

std::vector<sock_filter> Filter() {
  const sock_filter allow = Step(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
  const sock_filter kill = Step(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS);
  std::vector<sock_filter> steps = {LoadField(offsetof(seccomp_data, arch)),
                                    Step(BPF_JMP | BPF_JEQ | BPF_K, KELVA_AUDIT_ARCH, 1, 0), kill,
                                    LoadField(offsetof(seccomp_data, nr))};
  for (const long number : kAllowed) {
    steps.push_back(Step(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1));
    steps.push_back(allow);
  }
  // Memory, but none that could be run. The low half of the argument holds all flags.
  steps.push_back(Step(BPF_JMP | BPF_JEQ | BPF_K, SYS_mmap, 1, 0));
  steps.push_back(kill);
  steps.push_back(LoadField(offsetof(seccomp_data, args) + 2 * sizeof(__u64)));
  steps.push_back(Step(BPF_JMP | BPF_JSET | BPF_K, PROT_EXEC, 0, 1));
  steps.push_back(kill);
  steps.push_back(allow);
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
