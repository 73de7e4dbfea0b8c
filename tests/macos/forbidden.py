"""What a Mac's C library has not, or has under another name: headers and words that a file for a Mac may not use."""

import re

HEADERS = re.compile(r"linux/.*|asm/.*|libudev\.h|endian\.h|byteswap\.h|error\.h|features\.h|malloc\.h|mntent\.h|sys/(auxv|capability|epoll|"
                     r"eventfd|fanotify|inotify|memfd|personality|pidfd|prctl|sendfile|signalfd|statfs|sysinfo|sysmacros|timerfd|vfs|xattr)\.h")

# Each with what there is on both systems, or where the choice between the systems is made.
CALLS = {
    "a pipe, or platform/": "eventfd signalfd timerfd_create timerfd_settime epoll_create epoll_create1 epoll_ctl epoll_wait inotify_init1",
    "a pipe that ends with its process": "pidfd_open pidfd_send_signal prctl PR_SET_PDEATHSIG waitid_pidfd",
    "an unlinked temporary file": "memfd_create O_TMPFILE",
    "platform/": "pipe2 accept4 dup3 SOCK_CLOEXEC SOCK_NONBLOCK MSG_NOSIGNAL MSG_CMSG_CLOEXEC SO_PEERCRED ucred renameat2 RENAME_NOREPLACE "
                 "RENAME_EXCHANGE openat2 open_how O_PATH fdatasync sync_file_range syncfs posix_fallocate fallocate posix_fadvise "
                 "st_mtim st_atim st_ctim close_range closefrom",
    "getentropy": "getrandom",
    "poll": "ppoll POLLRDHUP",
    "a pipe that a handler writes to": "sigtimedwait sigwaitinfo sigqueue",
    "std::condition_variable": "sem_timedwait sem_clockwait pthread_condattr_setclock pthread_cond_clockwait clock_nanosleep timer_create",
    "the standard library": "jthread stop_token memrchr rawmemchr strchrnul mempcpy canonicalize_file_name get_current_dir_name "
                            "program_invocation_name program_invocation_short_name explicit_bzero secure_getenv",
    "nothing": "syscall gettid fexecve execvpe execveat prlimit statx copy_file_range vmsplice MSG_MORE MAP_POPULATE O_DIRECT "
               "O_NOATIME O_LARGEFILE AT_EMPTY_PATH sched_getaffinity sched_setaffinity getauxval sysinfo euidaccess eaccess",
}
WORDS = {word: instead for instead, words in CALLS.items() for word in words.split()}
WORD = re.compile(r"(?<![\w-])(" + "|".join(sorted(WORDS, key=len, reverse=True)) + r")(?!\w)")
# What has to stand in a file that uses a name, because a Mac's headers do not bring it.
NEEDS = {
    r"(?<!\w)environ(?!\w)": (r'extern char\*\* environ|extern "C" char\*\* environ|#include "platform/', "its declaration, or platform/"),
    r"(?<!\w)(newlocale|uselocale|freelocale|strtod_l)(?!\w)": (r"#include <locale>", "#include <locale>, which brings it on both systems"),
}
COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|("(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\')', re.DOTALL)
INCLUDE = re.compile(r"^[ \t]*#[ \t]*include[ \t]*<([^>]+)>", re.MULTILINE)


def complaints(source):
    """One line for each thing in a source file that a Mac does not have."""
    code = COMMENT_OR_TEXT.sub(lambda found: found.group(1) or " ", source)
    lines = [f"<{header}> is a header of Linux" for header in INCLUDE.findall(code) if HEADERS.fullmatch(header)]
    words = INCLUDE.sub(" ", COMMENT_OR_TEXT.sub(" ", code))
    lines += [f"{word} is of Linux alone; use {WORDS[word]}" for word in sorted(set(WORD.findall(words)))]
    if re.search(r'"/(proc|sys)/', code):
        lines.append("a path below /proc or /sys is of Linux alone; use platform/")
    for name, (needed, instead) in NEEDS.items():
        found = re.search(name, words)
        if found and not re.search(needed, code):
            lines.append(f"{found.group(0)} needs {instead}")
    return lines
