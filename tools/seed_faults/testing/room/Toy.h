#ifndef KELVA_TOOLS_SEED_FAULTS_TESTING_ROOM_TOY_H_
#define KELVA_TOOLS_SEED_FAULTS_TESTING_ROOM_TOY_H_

// What the toy room does: each function is a place for one kind of fault.

namespace toy {

/// Counts how often it is taken and given back, and notes what was last asked of it.
struct Recorder {
  void lock() { ++taken; }
  void unlock() { ++given; }
  void Note(int value) { last = last * 10 + value; }
  int taken = 0;
  int given = 0;
  int last = 0;
  bool twice = false;
};

enum Flag { RED = 1, BLUE = 2 };

int Flags();
bool IsBetween(int value, int low, int high);
int AfterNext(int value);
bool IsFree(bool taken);
void Note(Recorder& recorder, int first, int second);
int Lower(int first, int second);
void NoteLocked(Recorder& recorder);

}  // namespace toy

#endif  // KELVA_TOOLS_SEED_FAULTS_TESTING_ROOM_TOY_H_
