// The agent of Linux.

#include <string>
#include <vector>

#include "src/ui/linux/KelvaHelper/Agent.h"

int main(int argc, char* argv[]) {
  return helper::RunAgent({argv + 1, argv + argc});
}
