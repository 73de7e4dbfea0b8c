// kelva-vcam: virtual cameras on a bus or as a USB device.
#include "apps/commandline/Run.h"
#include "vcam/program/Verbs.h"

int main(int argc, char** argv) {
  const std::span<const char* const> all(argv, static_cast<std::size_t>(argc));
  return apps::RunProgram(vcam::program::Vcam(), all.empty() ? all : all.subspan(1));
}
