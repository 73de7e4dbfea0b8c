#include <string>
#include <vector>

#include "Opener.h"

int main(int argc, char* argv[]) {
  return opener::Open({argv + 1, argv + argc});
}
