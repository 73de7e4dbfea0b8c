"""Every X.cpp of the product has its X_test.cpp beside it, or stands below with the tests that hold it instead."""

import repository

ROOMS = ("src/", "platform/", "base/", "wire/", "darwin/", "bus/", "embed/", "apps/", "vcam/", "tools/")
# A main without a decision in it is tested by the end-to-end tests.
MAINS = ("main.cpp", "main.mm")
# By what a source is tested instead; a source that gets a test of its own leaves the list.
ELSEWHERE = {
    # The frameworks' behaviour is one suite, written against their calls and not against these files.
    "darwin/conformance": """
        darwin/cf/Dictionary.cpp darwin/cf/Number.cpp darwin/cf/Object.cpp
        darwin/cf/RunLoopSource.cpp darwin/cf/String.cpp darwin/registry/Accounting.cpp darwin/registry/Entry.cpp
        darwin/registry/IoKitConnections.cpp darwin/registry/IoKitObjects.cpp darwin/registry/IoKitServices.cpp
        darwin/registry/Notification.cpp darwin/registry/NoDefaultSource.cpp darwin/virtual/VirtualRegistry.cpp""",
    "darwin/cf/EventLoop_test.cpp": "darwin/cf/WatchDescriptor.cpp",
    # They talk to udev and to the kernel, which a mock machine answers there.
    "tests/umockdev": """
        apps/doctor/linux/Machine.cpp darwin/udev/UdevSource.cpp darwin/udev/UnitReader.cpp""",
    "apps/doctor/macos/Survey_test.cpp": "apps/doctor/macos/Machine.cpp",
    "embed/EventLoop_test.cpp": "embed/EventDescriptor.cpp",
    "tests/macos/library_sources_test.py": "embed/macos/CameraSource.cpp embed/macos/EventDescriptor.cpp",
    "tests/umockdev/DefaultSource_test.cpp": "darwin/udev/DefaultSource.cpp",
    "src/ui/linux/KelvaHelper/CameraSource_test.cpp": "src/ui/linux/KelvaHelper/VirtualCameraSource.cpp",
    "vcam/server/Bus_test.cpp": "vcam/server/BusRequests.cpp",
    # One test for what the build chooses among.
    "apps/tool/CameraSource_test.cpp": "apps/tool/linux/CameraSource.cpp apps/tool/virtual/CameraSource.cpp",
    "apps/tool/Tool_test.cpp": "apps/tool/NoHandOver.cpp",
    "platform/Files_test.cpp": "platform/linux/Files.cpp platform/macos/Files.cpp",
    "platform/Process_test.cpp": "platform/linux/Process.cpp platform/macos/Process.cpp",
    "platform/Processors_test.cpp": "platform/linux/Processors.cpp platform/macos/Processors.cpp",
    "platform/Sockets_test.cpp": "platform/linux/Sockets.cpp platform/macos/Sockets.cpp",
    "apps/decoder/Confine_test.cpp": """
        apps/decoder/ConfineLinux.cpp apps/decoder/ConfineNot.cpp apps/decoder/ConfinePosix.cpp""",
    # Seen through the tool's sync.
    "apps/kelva/verbs/SyncChoice_test.cpp": "apps/import/SyncChoice.cpp",
    "apps/kelva/verbs/SyncSummary_test.cpp": "apps/import/SyncSummary.cpp",
    "apps/kelva/verbs/SyncVerb_test.cpp": "apps/import/ImportRun.cpp",
    "tests/desktop/worker_test.py": "apps/desktop/worker/Browser.cpp",
    # They need a session bus, and what stands in for it needs a Mac's compiler.
    "tests/desktop/window_test.py": "apps/desktop/dbus/Appearance.cpp apps/desktop/dbus/SingleInstance.cpp",
    "tests/macos/sources_test.py": """
        apps/desktop/alone/Session.cpp
        apps/kelva/verbs/portable/NoMountVerb.cpp""",
    # It waits for a camera's clock, which no unit test does.
    "tests/cli/survey_test.py": "apps/kelva/survey/Survey.cpp",
    # They answer the kernel, which asks them there.
    "tests/mount": """
        apps/mount/FileSystem.cpp apps/mount/FileSystemRead.cpp apps/mount/FileSystemServe.cpp
        apps/mount/FileSystemTimes.cpp apps/mount/FileSystemWrite.cpp apps/mount/Kernel.cpp apps/mount/Launch.cpp apps/mount/Mount.cpp""",
    # The verbs of kelva-vcam are tested as the program that people run.
    "tests/vcam": """
        vcam/program/FaultVerb.cpp vcam/program/NoUsbipVerb.cpp vcam/program/PlugVerbs.cpp vcam/program/ServeVerb.cpp
        vcam/program/StatusVerb.cpp vcam/program/UsbipVerb.cpp vcam/program/Vcam.cpp""",
}


def check(root):
    exempt = {source: tests for tests, sources in ELSEWHERE.items() for source in sources.split()}
    for path in repository.files(root, ".cpp"):
        inside = path.relative_to(root).as_posix()
        if not inside.startswith(ROOMS) or path.name in MAINS or path.stem.endswith("_test"):
            continue
        if "/testing/" in inside or "/conformance/" in inside:
            continue
        tested = path.with_name(path.stem + "_test.cpp").exists()
        if tested and inside in exempt:
            yield f"{inside} has a test beside it and needs no exemption"
        if not tested and inside not in exempt:
            yield f"{inside} has no {path.stem}_test.cpp beside it"
        if inside in exempt and not (root / exempt[inside]).exists():
            yield f"{inside} is said to be tested by {exempt[inside]}, which is not there"


if __name__ == "__main__":
    repository.main(check)
