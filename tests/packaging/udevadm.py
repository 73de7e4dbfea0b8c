"""Evaluates the installed udev rule with the system's own udevadm over a mocked /sys.

udevadm reads its rules from fixed folders only, so that it runs in a mount namespace of its own, where /run holds nothing
but the rule under test. umockdev supplies the devices.
"""

import pathlib
import subprocess
import tempfile

USB = "/devices/pci0000:00/0000:00:14.0/usb1/1-1"
DEVICE = USB + "/1-1:1.0/host0/target0:0:0/0:0:0:0"
GENERIC = DEVICE + "/scsi_generic/sg0"
BLOCK = DEVICE + "/block/sdz"
PARTITION = BLOCK + "/sdz1"

SCRIPT = """
mount -t tmpfs none /run && mkdir -p /run/udev/rules.d && cp "$1" /run/udev/rules.d/ || exit 3
sed '/^plugdev:/d' /etc/group >/run/group && echo "$5:x:4711:" >>/run/group && mount --bind /run/group /etc/group || exit 3
exec umockdev-run --device="$2" -- udevadm test --action="$3" "/sys$4"
"""


def describe(vendor="Kelva", serial="KV0001", kind=0, revision="1.00", max_sectors=240):
    """The umockdev description of one camera: USB device, SCSI device, generic node, disk and partition."""
    serial_line = "" if serial is None else f"A: serial={serial}\\n\n"
    return f"""P: {USB}
E: SUBSYSTEM=usb
E: DEVTYPE=usb_device
E: DEVNAME=/dev/bus/usb/001/002
N: bus/usb/001/002
A: idVendor=1209\\n
A: idProduct=0001\\n
{serial_line}
P: {USB}/1-1:1.0
E: SUBSYSTEM=usb
E: DEVTYPE=usb_interface
A: bInterfaceNumber=00\\n
A: bInterfaceClass=08\\n
A: bInterfaceSubClass=06\\n
A: bInterfaceProtocol=50\\n

P: {USB}/1-1:1.0/host0
E: SUBSYSTEM=scsi
E: DEVTYPE=scsi_host

P: {USB}/1-1:1.0/host0/target0:0:0
E: SUBSYSTEM=scsi
E: DEVTYPE=scsi_target

P: {DEVICE}
E: SUBSYSTEM=scsi
E: DEVTYPE=scsi_device
A: vendor={vendor:<8}\\n
A: model=Camera          \\n
A: rev={revision}\\n
A: type={kind}\\n
A: max_sectors={max_sectors}\\n

P: {GENERIC}
N: sg0
E: SUBSYSTEM=scsi_generic
E: DEVNAME=/dev/sg0
E: MAJOR=21
E: MINOR=0

P: {BLOCK}
N: sdz
E: SUBSYSTEM=block
E: DEVTYPE=disk
E: DEVNAME=/dev/sdz
E: MAJOR=65
E: MINOR=144

P: {PARTITION}
N: sdz1
E: SUBSYSTEM=block
E: DEVTYPE=partition
E: DEVNAME=/dev/sdz1
E: MAJOR=65
E: MINOR=145
"""


class Outcome:
    """What udev would do for one event."""

    def __init__(self, text, rule_name):
        self.text = text
        self.properties = dict(line.split("=", 1) for line in text.splitlines() if "=" in line and " " not in line.split("=", 1)[0])
        self.ours = [line for line in text.splitlines() if rule_name + ":" in line]

    def says(self, words):
        """True when the rule under test logged an action with these words."""
        return any(words in line for line in self.ours)


def evaluate(rule, device, path, action="add", group="plugdev"):
    """Runs the event of one device through the machine's rules and the one under test, on a machine that has this group."""
    with tempfile.TemporaryDirectory() as folder:
        description = pathlib.Path(folder, "camera.umockdev")
        description.write_text(device)
        command = ["unshare", "--user", "--map-root-user", "--mount", "sh", "-c", SCRIPT, "sh", rule, str(description), action, path, group]
        run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=60, check=False)
    if run.returncode != 0:
        raise RuntimeError(f"udevadm ended with {run.returncode}:\n{run.stdout}")
    return Outcome(run.stdout, pathlib.Path(rule).name)
