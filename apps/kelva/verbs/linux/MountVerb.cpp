// The verb mount, which kelva-mount does.
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

constexpr Argument kArguments[] = {{"DIR",
                                    "An empty folder, or one that is missing: it is made, and removed afterwards. The "
                                    "default is \"Kelva SERIAL\" in the "
                                    "home folder.",
                                    Argument::Count::kOptional, Offer::kFolder}};
constexpr Option kOptions[] = {
    {"all", 'a', "", "Mount every attached camera that is not mounted."},
    {"writable", 'w', "", "Let programs delete files and write new ones; without it the folder is read-only."},
    {"foreground", 'f', "", "Return when the mount ends, not when it stands."},
};
constexpr Example kExamples[] = {
    {"kelva mount", "Show the camera as a folder, for any program."},
    {"kelva mount /mnt && cp -a /mnt/DCIM ~/Pictures; fusermount3 -u /mnt", "Copy all pictures without `kelva sync`."},
    {"kelva mount --foreground --json",
     "Serve the folder until Ctrl-C, with an event when it stands and one when it ends."},
};

constexpr Verb kVerbs[] = {
    {.name = "mount",
     .summary = "Show the camera's storage as a folder",
     .arguments = kArguments,
     .options = kOptions,
     .details =
         R"(Any program can then list and read the camera's files. Nothing is copied: each read comes from the camera, and what
was read last is kept for two seconds, 5 MiB at most. Other commands and programs use the camera meanwhile. A read waits
for a camera that another program holds, as --wait-busy says, and then fails with EBUSY.

`fusermount3 -u DIR` ends the mount, and so do Ctrl-C and --timeout with --foreground; without it, --timeout is the time
that the mount may take to stand. With --all, a camera that has not become a folder five seconds after the time of
--wait-busy is given up. When the camera is unplugged, waiting and later
reads fail with ENODEV and the mount ends. It also ends when its program is killed.

Names are those of the camera, in any case of letters. A byte that is not safe in a name is shown as %XX, as `kelva sync`
writes it. After a change by another program the folder shows the old listing for at most a second, and longer only where
a listing takes longer than a tenth of that.

All files of a picture below DCIM have the time that `kelva sync` gives them: the date in the JPG file, else that of the
camera's catalogue. Whoever asks for the attributes of a picture for the first time has up to 64 KiB of its JPG file read
(`ls -l` of 1,000 pictures: 64 MB); listing names reads nothing of them. In a folder with more than 9,999 JPG files the
catalogue alone gives dates. What has no date, and every folder, has 1980-01-01 in each mount, so that rsync does not
take it for changed.

With --writable, a file goes to the camera when it is closed: it is collected in a temporary file, sent, read back and
compared, and close(2) fails when that does. A part of a file is deleted again, unless the
camera was unplugged or this program killed while it was sent. The camera takes whole files only: a program
that opens a file to change a part of it gets EOPNOTSUPP. Folders cannot be made, removed or renamed. To rename a file is
EXDEV: mv and file managers then copy it and delete the old one.

Some cameras send a file from its start to its end only. A program that reads elsewhere then waits until the file was read
up to there; what comes is kept in a temporary file in TMPDIR, or /var/tmp, for the two files that were read last.)",
     .json = R"(event: mounted; with --foreground also unmounted, at the end
serial: of the camera; with both, and at the end without --all
path: the folder; with both
was_mounted: whether it was mounted before; with mounted
why: unmounted, unplugged or stopped; with unmounted
mounts: how many mounts there are; at the end, without --foreground)",
     .examples = kExamples,
     .run = nullptr,
     .doneBy = "kelva-mount"}};

}  // namespace

std::span<const Verb> MountVerbs() {
  return kVerbs;
}

}  // namespace apps
