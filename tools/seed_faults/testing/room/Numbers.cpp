// Places for faults in numbers, conditions and the order of calls.
#include "Toy.h"

namespace toy {

int Flags() {
  return RED | BLUE;
}

bool IsBetween(int value, int low, int high) {
  return value > low && value < high;
}

int AfterNext(int value) {
  ++value;
  return value + 1;
}

bool IsFree(bool taken) {
  if (!taken) return true;
  return false;
}

void Note(Recorder& recorder, int first, int second) {
  recorder.Note(first);
  recorder.Note(second);
  if (first == second) {
    recorder.twice = true;
  }
}

}  // namespace toy
