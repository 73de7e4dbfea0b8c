#pragma once
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

constexpr std::size_t PROC_PIDPATHINFO_MAXSIZE = 4096;

inline int proc_name(int process, void* buffer, std::uint32_t size) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  name.resize(name.size() < size ? name.size() : size - 1);
  std::memcpy(buffer, name.c_str(), name.size() + 1);
  return static_cast<int>(name.size());
}
