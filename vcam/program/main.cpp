#include "vcam/program/Verbs.h"

int main(int argc, char** argv) {
  return vcam::program::Run(argc, argv);
}
