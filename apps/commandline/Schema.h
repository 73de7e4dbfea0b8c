#ifndef KELVA_APPS_COMMANDLINE_SCHEMA_H_
#define KELVA_APPS_COMMANDLINE_SCHEMA_H_

namespace apps {

/// The version of everything that --json prints. Members may be added under the same number; taking one away or changing
/// its meaning makes a new number. docs/json.md describes it.
inline constexpr int kJsonSchema = 1;

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_SCHEMA_H_
