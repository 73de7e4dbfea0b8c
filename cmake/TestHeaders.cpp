// The owner of the precompiled header that all tests share; cmake/KelvaBuild.cmake lists what is in it.
int main() {
  return 0;
}
