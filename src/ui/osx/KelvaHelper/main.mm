// The agent of macOS.

#import <Cocoa/Cocoa.h>

int main(int argc, const char* argv[]) {
  return NSApplicationMain(argc, argv);
}
