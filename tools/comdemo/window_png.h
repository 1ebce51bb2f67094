// Screenshots of dialogs, for the demo and the window tests: a dialog found by
// its title, and its pixels as the screen shows them written as PNG.
#pragma once
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "dialogs/win32/win32_handles.h"

namespace tavrine::window_png {

// A minimal PNG encoder (8-bit RGB, stored deflate blocks): enough for
// screenshots without an image library.
inline bool WritePng(const std::wstring& file, int width, int height,
                     const std::vector<std::uint8_t>& rgb) {
  auto crc_table = [] {
    std::vector<std::uint32_t> table(256);
    for (std::uint32_t n = 0; n < 256; ++n) {
      std::uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      table[n] = c;
    }
    return table;
  }();
  auto put32 = [](std::string& out, std::uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((v >> shift) & 0xFF);
  };
  auto chunk = [&](std::string& out, const char* type, const std::string& data) {
    put32(out, static_cast<std::uint32_t>(data.size()));
    std::string body = std::string(type, 4) + data;
    std::uint32_t crc = 0xFFFFFFFFu;
    for (unsigned char ch : body) crc = crc_table[(crc ^ ch) & 0xFF] ^ (crc >> 8);
    out += body;
    put32(out, crc ^ 0xFFFFFFFFu);
  };
  std::string raw;
  for (int y = 0; y < height; ++y) {
    raw += '\0';  // filter: none
    raw.append(reinterpret_cast<const char*>(rgb.data()) + static_cast<std::size_t>(y) * width * 3,
               static_cast<std::size_t>(width) * 3);
  }
  std::string zlib = "\x78\x01";
  std::uint32_t a = 1, b = 0;
  for (unsigned char ch : raw) {
    a = (a + ch) % 65521;
    b = (b + a) % 65521;
  }
  for (std::size_t at = 0; at < raw.size() || at == 0; at += 65535) {
    std::size_t length = std::min<std::size_t>(65535, raw.size() - at);
    bool last = at + length >= raw.size();
    zlib += static_cast<char>(last ? 1 : 0);
    zlib += static_cast<char>(length & 0xFF);
    zlib += static_cast<char>(length >> 8);
    zlib += static_cast<char>(~length & 0xFF);
    zlib += static_cast<char>((~length >> 8) & 0xFF);
    zlib.append(raw, at, length);
    if (last) break;
  }
  put32(zlib, (b << 16) | a);
  std::string header;
  put32(header, static_cast<std::uint32_t>(width));
  put32(header, static_cast<std::uint32_t>(height));
  header += std::string("\x08\x02\x00\x00\x00", 5);
  std::string png = "\x89PNG\r\n\x1a\n";
  chunk(png, "IHDR", header);
  chunk(png, "IDAT", zlib);
  chunk(png, "IEND", "");
  std::ofstream stream(std::string(file.begin(), file.end()), std::ios::binary);
  stream << png;
  return static_cast<bool>(stream);
}

// Polls for a visible top-level dialog of this process with exactly this title.
inline HWND WaitForDialog(const std::wstring& title, int timeout_ms) {
  for (int waited = 0; waited < timeout_ms; waited += 50) {
    if (HWND window = FindWindowW(L"#32770", title.c_str()); window && IsWindowVisible(window)) return window;
    Sleep(50);
  }
  return nullptr;
}

// The window as the screen shows it, written as PNG; false when it could not be read.
inline bool SaveWindowPng(HWND window, const std::wstring& file) {
  using dialogs::win32::MemoryDc, dialogs::win32::SelectScope, dialogs::win32::UniqueBitmap,
      dialogs::win32::WindowDc;
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  Sleep(300);
  RECT rect{};
  GetWindowRect(window, &rect);
  const int width = rect.right - rect.left, height = rect.bottom - rect.top;
  if (width <= 0 || height <= 0) return false;
  WindowDc screen(nullptr);
  MemoryDc memory(screen.get());
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  UniqueBitmap bitmap(CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap) return false;
  {
    SelectScope select(memory.get(), bitmap.get());
    BitBlt(memory.get(), 0, 0, width, height, screen.get(), rect.left, rect.top, SRCCOPY);
  }
  GdiFlush();
  const int stride = (width * 3 + 3) & ~3;
  std::vector<std::uint8_t> rgb;
  rgb.reserve(static_cast<std::size_t>(width) * height * 3);
  for (int y = 0; y < height; ++y) {
    const auto* row = static_cast<const std::uint8_t*>(bits) + static_cast<std::size_t>(y) * stride;
    for (int x = 0; x < width; ++x) rgb.insert(rgb.end(), {row[x * 3 + 2], row[x * 3 + 1], row[x * 3]});
  }
  return WritePng(file, width, height, rgb);
}

}  // namespace tavrine::window_png
