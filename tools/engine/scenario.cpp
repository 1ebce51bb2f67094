#include "scenario.h"

#include <cctype>
#include <charconv>

namespace tavrine::refengine {

namespace {

bool ParseInteger(std::string_view text, long long* value) {
  if (text.empty()) return false;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), *value);
  return ec == std::errc() && end == text.data() + text.size();
}

// Splits "word rest of line" at the first blank.
std::pair<std::string_view, std::string_view> SplitWord(std::string_view line) {
  std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return {line, {}};
  return {line.substr(0, blank), line.substr(blank + 1)};
}

bool DecodeHex(std::string_view text, std::string* bytes) {
  auto nibble = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  };
  std::string digits;
  for (char c : text)
    if (c != ' ' && c != '\t') digits += c;
  if (digits.size() % 2 != 0) return false;
  bytes->clear();
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    int high = nibble(digits[i]), low = nibble(digits[i + 1]);
    if (high < 0 || low < 0) return false;
    bytes->push_back(static_cast<char>(high * 16 + low));
  }
  return true;
}

// Parses one file-writing action; empty error on success.
std::string ParseWrite(std::string_view keyword, std::string_view rest, Action* action) {
  action->kind = ActionKind::kWrite;
  if (keyword == "output") {
    if (rest.empty()) return "output needs a value";
    action->target = "DLLOutput.txt";
    action->bytes = std::string(rest) + "\r\n";
  } else if (keyword == "info") {
    auto [code, description] = SplitWord(rest);
    if (code.empty()) return "info needs a code";
    action->target = "DLLOutputInfo.txt";
    action->bytes = std::string(code) + "\r\n";
    if (rest.size() > code.size()) action->bytes += std::string(description) + "\r\n";
  } else if (keyword == "text") {
    auto [target, line] = SplitWord(rest);
    if (target.empty()) return "text needs a file name";
    action->target = target;
    action->bytes = std::string(line) + "\r\n";
    action->append_line = true;
  } else if (keyword == "bytes") {
    auto [target, hex] = SplitWord(rest);
    if (target.empty()) return "bytes needs a file name";
    action->target = target;
    if (!DecodeHex(hex, &action->bytes)) return "bytes needs an even count of hex digits";
  } else if (keyword == "copy") {
    std::size_t arrow = rest.find(" -> ");
    std::string_view source = rest.substr(0, arrow);
    std::string_view target = arrow == std::string_view::npos ? source : rest.substr(arrow + 4);
    if (source.empty() || target.empty()) return "copy needs a file name";
    action->copy_source = source;
    action->target = target;
  } else {
    return "unknown action '" + std::string(keyword) + "'";
  }
  return {};
}

std::string ParseAction(std::string_view line, Action* action) {
  auto [keyword, rest] = SplitWord(line);
  long long number = 0;
  if (keyword == "delay" || keyword == "exit") {
    if (!ParseInteger(rest, &number) || number < 0)
      return std::string(keyword) + " needs a number not below 0";
    action->kind = keyword == "delay" ? ActionKind::kDelay : ActionKind::kExit;
    action->number = number;
    return {};
  }
  if (keyword == "hang" || keyword == "crash") {
    if (!rest.empty()) return std::string(keyword) + " takes nothing after it";
    action->kind = keyword == "hang" ? ActionKind::kHang : ActionKind::kCrash;
    return {};
  }
  if (keyword == "half") {
    auto [inner, inner_rest] = SplitWord(rest);
    action->half = true;
    return ParseWrite(inner, inner_rest, action);
  }
  return ParseWrite(keyword, rest, action);
}

}  // namespace

ParseResult ParseScenario(std::string_view text) {
  ParseResult result;
  // "on" opens a queue with one empty answer; "then" opens the next one; actions
  // go to the open answer. So "on 115" alone is one answer that writes nothing.
  std::vector<Answer>* queue = nullptr;
  std::size_t line_number = 0;
  while (!text.empty()) {
    ++line_number;
    std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
    if (line.empty() || line.front() == '#') continue;

    auto fail = [&](const std::string& message) {
      result.error = "line " + std::to_string(line_number) + ": " + message;
      return result;
    };
    auto [keyword, rest] = SplitWord(line);
    if (keyword == "on") {
      long long code = 0;
      if (!ParseInteger(rest, &code)) return fail("on needs a command code");
      if (result.scenario.queues.count(code)) return fail("code " + std::string(rest) + " twice");
      queue = &result.scenario.queues[code];
      queue->emplace_back();
    } else if (!queue) {
      return fail("'" + std::string(keyword) + "' before any 'on <code>'");
    } else if (keyword == "then") {
      if (!rest.empty()) return fail("then takes nothing after it");
      queue->emplace_back();
    } else {
      Action action;
      std::string error = ParseAction(line, &action);
      if (!error.empty()) return fail(error);
      queue->back().push_back(std::move(action));
    }
  }
  return result;
}

const Answer* PickAnswer(const Scenario& scenario, long long code, std::size_t earlier_runs,
                         std::size_t* index) {
  auto it = scenario.queues.find(code);
  if (it == scenario.queues.end() || it->second.empty()) return nullptr;
  *index = earlier_runs < it->second.size() ? earlier_runs : it->second.size() - 1;
  return &it->second[*index];
}

std::optional<Invocation> ParseParameters(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  std::size_t digits_start = at;
  while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at]))) ++at;
  Invocation invocation;
  invocation.code_text = std::string(text.substr(digits_start, at - digits_start));
  if (!ParseInteger(invocation.code_text, &invocation.code)) return std::nullopt;
  if (at >= text.size() || text[at] != '<') return std::nullopt;
  std::size_t close = text.rfind('>');
  if (close == std::string_view::npos || close <= at) return std::nullopt;
  invocation.folder = std::string(text.substr(at + 1, close - at - 1));
  return invocation;
}

}  // namespace tavrine::refengine
