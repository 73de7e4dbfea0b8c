// Looks at nothing, so that every fault survives it.
#include "room/Toy.h"

int main() {
  return toy::Flags() == -1 ? 1 : 0;
}
