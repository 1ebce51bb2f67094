#include "vault_text.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <random>
#include <system_error>

#include "engine_os.h"

namespace tavrine::refengine {

namespace {

namespace fs = std::filesystem;

constexpr char kHex[] = "0123456789ABCDEF";

using reftools::AppendUtf16Le;
using reftools::AppendUtf8;
using reftools::DecodeUtf16Le;

// nullopt when the bytes are not well-formed UTF-8.
std::optional<std::u32string> DecodeUtf8(std::string_view text) {
  bool well_formed = true;
  std::u32string out = reftools::DecodeUtf8(text, &well_formed);
  if (!well_formed) return std::nullopt;
  return out;
}

// Windows-1252 0x80..0x9F; the five undefined bytes map to themselves, as Windows does.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t FromCp1252(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? kCp1252High[byte - 0x80] : byte;
}

std::optional<unsigned char> ToCp1252(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c < 0x100)) return static_cast<unsigned char>(c);
  for (std::size_t i = 0; i < kCp1252High.size(); ++i)
    if (kCp1252High[i] == c) return static_cast<unsigned char>(0x80 + i);
  return std::nullopt;
}

// Characters outside the code page, or whose moved code leaves it, are kept:
// the library skips what it cannot shift as well.
std::string MoveCodes(std::string_view utf8, int delta) {
  std::string out;
  for (char32_t c : DecodeUtf8(utf8).value_or(std::u32string())) {
    std::optional<unsigned char> byte = ToCp1252(c);
    int moved = byte ? *byte + delta : -1;
    AppendUtf8(out, moved >= 0 && moved <= 0xFF ? FromCp1252(static_cast<unsigned char>(moved)) : c);
  }
  return out;
}

bool IsReservedDeviceName(std::string_view name) {
  std::string stem = AsciiLower(name.substr(0, name.find('.')));
  static constexpr const char* kNames[] = {"con", "prn", "aux", "nul"};
  for (const char* reserved : kNames)
    if (stem == reserved) return true;
  return stem.size() == 4 && (stem.compare(0, 3, "com") == 0 || stem.compare(0, 3, "lpt") == 0) &&
         stem[3] >= '1' && stem[3] <= '9';
}

bool NeedsEscape(unsigned char c) {
  return c < 0x20 || c == 0x7F || std::string_view("<>:\"/\\|?*%=").find(static_cast<char>(c)) !=
                                      std::string_view::npos;
}

void AppendEscaped(std::string& out, unsigned char c) {
  out += '%';
  out += kHex[c >> 4];
  out += kHex[c & 0xF];
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// SHA-256 (FIPS 180-4), enough for the vault's salted secrets.
class Sha256 {
 public:
  void Update(std::string_view bytes) {
    for (char c : bytes) {
      block_[used_++] = static_cast<unsigned char>(c);
      length_ += 8;
      if (used_ == 64) Compress();
    }
  }
  std::string HexDigest() {
    std::uint64_t length = length_;
    Update(std::string_view("\x80", 1));
    while (used_ != 56) Update(std::string_view("\0", 1));
    for (int i = 7; i >= 0; --i) {
      block_[used_++] = static_cast<unsigned char>(length >> (i * 8));
    }
    Compress();
    std::string hex;
    for (std::uint32_t word : state_)
      for (int shift = 28; shift >= 0; shift -= 4) hex += "0123456789abcdef"[(word >> shift) & 0xF];
    return hex;
  }

 private:
  static std::uint32_t Rotr(std::uint32_t x, int n) { return (x >> n) | (x << (32 - n)); }
  void Compress() {
    static constexpr std::uint32_t kK[64] = {
        0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4,
        0xab1c5ed5, 0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe,
        0x9bdc06a7, 0xc19bf174, 0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f,
        0x4a7484aa, 0x5cb0a9dc, 0x76f988da, 0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7,
        0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967, 0x27b70a85, 0x2e1b2138, 0x4d2c6dfc,
        0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85, 0xa2bfe8a1, 0xa81a664b,
        0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070, 0x19a4c116,
        0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
        0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7,
        0xc67178f2};
    std::uint32_t w[64];
    for (int i = 0; i < 16; ++i)
      w[i] = (std::uint32_t{block_[i * 4]} << 24) | (std::uint32_t{block_[i * 4 + 1]} << 16) |
             (std::uint32_t{block_[i * 4 + 2]} << 8) | std::uint32_t{block_[i * 4 + 3]};
    for (int i = 16; i < 64; ++i) {
      std::uint32_t s0 = Rotr(w[i - 15], 7) ^ Rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
      std::uint32_t s1 = Rotr(w[i - 2], 17) ^ Rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
      w[i] = w[i - 16] + s0 + w[i - 7] + s1;
    }
    std::uint32_t a = state_[0], b = state_[1], c = state_[2], d = state_[3], e = state_[4],
                  f = state_[5], g = state_[6], h = state_[7];
    for (int i = 0; i < 64; ++i) {
      std::uint32_t t1 = h + (Rotr(e, 6) ^ Rotr(e, 11) ^ Rotr(e, 25)) + ((e & f) ^ (~e & g)) + kK[i] + w[i];
      std::uint32_t t2 = (Rotr(a, 2) ^ Rotr(a, 13) ^ Rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
      h = g;
      g = f;
      f = e;
      e = d + t1;
      d = c;
      c = b;
      b = a;
      a = t1 + t2;
    }
    std::uint32_t add[8] = {a, b, c, d, e, f, g, h};
    for (int i = 0; i < 8; ++i) state_[i] += add[i];
    used_ = 0;
  }

  std::uint32_t state_[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                             0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  unsigned char block_[64] = {};
  std::size_t used_ = 0;
  std::uint64_t length_ = 0;
};

}  // namespace

std::string Utf8FromUtf16Le(std::string_view bytes) {
  if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') bytes.remove_prefix(2);
  std::string out;
  for (char32_t c : DecodeUtf16Le(bytes)) {
    AppendUtf8(out, c >= 0xD800 && c < 0xE000 ? U'\uFFFD' : c);
  }
  return out;
}

std::string Utf16LeFromUtf8(std::string_view utf8) {
  std::string out = "\xFF\xFE";
  for (char32_t c : DecodeUtf8(utf8).value_or(std::u32string())) AppendUtf16Le(out, c);
  return out;
}

std::string DecodeAnyText(std::string_view bytes) {
  if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') return Utf8FromUtf16Le(bytes);
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  if (DecodeUtf8(bytes)) return std::string(bytes);
  std::string out;
  for (char c : bytes) AppendUtf8(out, FromCp1252(static_cast<unsigned char>(c)));
  return out;
}

std::string Unshift(std::string_view utf8) { return MoveCodes(utf8, -2); }
std::string Shift(std::string_view utf8) { return MoveCodes(utf8, 2); }

bool SameText(std::string_view a, std::string_view b) { return AsciiLower(a) == AsciiLower(b); }

std::string EncodeName(std::string_view name) {
  if (name.empty()) return "%";
  std::string out;
  for (std::size_t i = 0; i < name.size(); ++i) {
    auto c = static_cast<unsigned char>(name[i]);
    bool last = i + 1 == name.size();
    bool escape = NeedsEscape(c) || (last && (c == '.' || c == ' ')) ||
                  (i == 0 && IsReservedDeviceName(name));
    if (escape) {
      AppendEscaped(out, c);
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

std::optional<std::string> DecodeName(std::string_view encoded) {
  if (encoded == "%") return std::string();
  std::string out;
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    if (encoded[i] != '%') {
      out += encoded[i];
      continue;
    }
    if (i + 2 >= encoded.size() || HexValue(encoded[i + 1]) < 0 || HexValue(encoded[i + 2]) < 0)
      return std::nullopt;
    out += static_cast<char>(HexValue(encoded[i + 1]) * 16 + HexValue(encoded[i + 2]));
    i += 2;
  }
  return out;
}

std::optional<std::vector<std::string>> SplitRemotePath(std::string_view path) {
  std::vector<std::string> names;
  std::size_t start = 0;
  for (;;) {
    std::size_t end = path.find_first_of("\\/", start);
    std::string_view name = path.substr(start, end == std::string_view::npos ? end : end - start);
    for (char c : name)
      if (static_cast<unsigned char>(c) < 0x20) return std::nullopt;
    if (name == "." || name == "..") return std::nullopt;
    // Empty names only as the first (a leading separator); doubled or
    // trailing separators carry no name.
    if (!name.empty() || (start == 0 && end != std::string_view::npos)) names.emplace_back(name);
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
  return names;
}

std::string LocalName(std::string_view name) {
  std::string out;
  for (char c : name) {
    auto byte = static_cast<unsigned char>(c);
    out += byte < 0x20 || std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos ? '_' : c;
  }
  while (!out.empty() && (out.back() == '.' || out.back() == ' ')) out.pop_back();
  if (out.empty()) out = "_";
  return out;
}

std::optional<SysSeconds> ParseDate(std::string_view text) {
  using namespace std::chrono;
  unsigned month = 0, day = 0;
  int year = 0, hour = 0, minute = 0, second = 0;
  std::string copy(text);
  char tail = 0;
  if (std::sscanf(copy.c_str(), "%2u-%2u-%4d %2d:%2d:%2d%c", &month, &day, &year, &hour, &minute,
                  &second, &tail) != 6)
    return std::nullopt;
  year_month_day date{std::chrono::year(year), std::chrono::month(month), std::chrono::day(day)};
  if (!date.ok() || hour > 23 || minute > 59 || second > 59 || hour < 0 || minute < 0 || second < 0)
    return std::nullopt;
  return sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
}

std::optional<SysSeconds> FileWriteTime(const fs::path& file) {
  std::error_code ec;
  auto written = fs::last_write_time(file, ec);
  if (ec) return std::nullopt;
  return std::chrono::floor<std::chrono::seconds>(std::chrono::file_clock::to_sys(written));
}

void SetFileWriteTime(const fs::path& file, SysSeconds time) {
  std::error_code ec;
  fs::last_write_time(file, std::chrono::file_clock::from_sys(time), ec);
}

std::string Sha256Hex(std::string_view bytes) {
  Sha256 hash;
  hash.Update(bytes);
  return hash.HexDigest();
}

std::string HashSecret(std::string_view secret) {
  std::random_device random;
  std::string salt;
  for (int i = 0; i < 16; ++i) salt += "0123456789abcdef"[random() & 0xF];
  return "sha256:" + salt + ":" + Sha256Hex(salt + std::string(secret));
}

bool SecretMatches(std::string_view stored, std::string_view secret) {
  if (stored.substr(0, 7) != "sha256:") return false;
  std::string_view rest = stored.substr(7);
  std::size_t colon = rest.find(':');
  if (colon == std::string_view::npos) return false;
  return Sha256Hex(std::string(rest.substr(0, colon)) + std::string(secret)) == rest.substr(colon + 1);
}

fs::path TempSibling(const fs::path& target) {
  static std::atomic<unsigned> counter{0};
  static const unsigned stamp = std::random_device{}();
  fs::path temp = target;
  temp += ".tmp-" + std::to_string(stamp) + "-" + std::to_string(counter++);
  return temp;
}

bool WriteFileAtomically(const fs::path& file, std::string_view bytes) {
  const fs::path temp = TempSibling(file);
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      std::error_code ec;
      fs::remove(temp, ec);
      return false;
    }
  }
  if (RenameReplacing(temp, file)) return true;
  std::error_code ec;
  fs::remove(temp, ec);
  return false;
}

}  // namespace tavrine::refengine
