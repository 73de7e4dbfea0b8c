// The window that shows the pictures of attached cameras.
#include "apps/desktop/Application.h"

int main(int argc, char** argv) {
  return desktop::Run(argc, argv);
}
