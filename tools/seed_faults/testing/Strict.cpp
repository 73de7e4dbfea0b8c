// Looks at everything, so that no fault survives it.
#include "room/Toy.h"

namespace {

bool NumbersAreRight() {
  return toy::Flags() == 3 && toy::Lower(2, 1) == 1 && toy::AfterNext(1) == 3 && toy::IsFree(false) &&
         !toy::IsFree(true);
}

bool LimitsAreRight() {
  return !toy::IsBetween(3, 3, 7) && toy::IsBetween(4, 3, 7) && toy::IsBetween(6, 3, 7) && !toy::IsBetween(7, 3, 7);
}

bool NotesAreRight() {
  toy::Recorder same;
  toy::Note(same, 4, 4);
  toy::Recorder other;
  toy::Note(other, 1, 2);
  toy::NoteLocked(other);
  return same.last == 44 && same.twice && other.last == 12 && !other.twice && other.taken == 1 && other.given == 1;
}

}  // namespace

int main() {
  return NumbersAreRight() && LimitsAreRight() && NotesAreRight() ? 0 : 1;
}
