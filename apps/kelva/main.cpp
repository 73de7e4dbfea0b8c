// Entry point of `kelva`.
#include <cstddef>
#include <span>

#include "apps/kelva/verbs/Verbs.h"
#include "apps/tool/Tool.h"

int main(int argc, char** argv) {
  const std::span<const char* const> all(argv, static_cast<std::size_t>(argc));
  return apps::RunTool(apps::Kelva(), all.empty() ? all : all.subspan(1));
}
