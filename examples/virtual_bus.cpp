// Part of each example, to try it without a camera: with KELVA_BUS it sees the cameras of that bus of kelva-vcam.
#include <kelva/VirtualBus.h>

#include <cstdlib>
#include <exception>
#include <iostream>

namespace {

// Chosen before main, so that the example itself reads as it would for real cameras.
const bool chosen = [] {
  const char* bus = std::getenv("KELVA_BUS");
  if (bus == nullptr) return false;
  try {
    kelva::UseVirtualBus(bus);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    std::exit(1);
  }
  return true;
}();

}  // namespace
