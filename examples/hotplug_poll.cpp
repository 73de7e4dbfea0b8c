// Says which cameras come and go, in a loop over poll(2). Ends with standard input.
#include <kelva/EventLoop.h>
#include <kelva/Listener.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <iostream>

int main() {
  const kelva::Listener listener({
      .attached = [](auto, auto& serial) { std::cout << serial << " attached" << std::endl; },
      .lost = [](auto, auto& serial) { std::cout << serial << " lost" << std::endl; },
      .badCamera = [] { std::cout << "A camera was taken for a CD drive and cannot be used." << std::endl; },
  });
  std::array<pollfd, 2> watched{{{kelva::EventDescriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
  // macOS has no such descriptor: look for events ten times a second.
  const int timeout = watched[0].fd < 0 ? 100 : -1;
  while (watched[1].revents == 0) {
    poll(watched.data(), watched.size(), timeout);
    kelva::DispatchEvents();
  }
}
