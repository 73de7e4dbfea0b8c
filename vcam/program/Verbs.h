#ifndef KELVA_VCAM_PROGRAM_VERBS_H_
#define KELVA_VCAM_PROGRAM_VERBS_H_

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

// The verbs of kelva-vcam, one file each. A verb adds its sub-command and, when it is the one that was given, leaves what
// is to be done; that returns the exit code, or throws std::runtime_error with one sentence.

namespace vcam::program {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitNoSuchCamera = 3;

using Action = std::function<int()>;

void AddServe(CLI::App& app, Action& chosen);
void AddPlug(CLI::App& app, Action& chosen);
void AddUnplug(CLI::App& app, Action& chosen);
void AddStatus(CLI::App& app, Action& chosen);
void AddFault(CLI::App& app, Action& chosen);
void AddUsbip(CLI::App& app, Action& chosen);

/// The `--socket PATH` that every verb of the bus needs.
void AddSocketOption(CLI::App& verb, std::string& path);

/// The whole program: parses, runs, reports; returns the exit code.
int Run(int argc, char** argv);

}  // namespace vcam::program

#endif  // KELVA_VCAM_PROGRAM_VERBS_H_
