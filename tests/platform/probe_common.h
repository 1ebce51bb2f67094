#pragma once
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

// The probe's parameters look like the engine's: " <ms><folder>". It sleeps
// <ms>, then writes probe.txt into <folder>: the parameters exactly as received
// and its working folder, both UTF-8, one per line.
namespace tavrine::testing::probe {

struct Request {
  unsigned ms = 0;
  std::string folder;  // UTF-8
};

inline bool Parse(const std::string& tail, Request& request) {
  std::size_t open = tail.find('<');
  std::size_t close = tail.rfind('>');
  if (open == std::string::npos || close == std::string::npos || close < open) return false;
  request.ms = 0;
  for (std::size_t i = 0; i < open; ++i) {
    if (tail[i] >= '0' && tail[i] <= '9') request.ms = request.ms * 10 + (tail[i] - '0');
  }
  request.folder = tail.substr(open + 1, close - open - 1);
  return true;
}

inline void SleepFor(unsigned ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

inline void WriteReport(std::ofstream& out, const std::string& tail, const std::string& cwd) {
  out << tail << "\n" << cwd << "\n";
}

}  // namespace tavrine::testing::probe
