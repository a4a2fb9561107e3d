#include "host/access_log.h"

#include <cstdio>

#include "host/http_server.h"

namespace tidewell {
namespace {

// The length of the valid UTF-8 sequence that starts `text`, or 0 when it does not start one.
size_t Utf8SequenceLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  size_t length = lead >= 0xf0 && lead <= 0xf4 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc2 ? 2 : 0;
  if (lead >= 0xf5 || length == 0 || text.size() < length) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return 0;
  }
  // Overlong forms, surrogates and code points past U+10FFFF.
  if (lead == 0xe0 && byte(1) < 0xa0) return 0;
  if (lead == 0xed && byte(1) >= 0xa0) return 0;
  if (lead == 0xf0 && byte(1) < 0x90) return 0;
  if (lead == 0xf4 && byte(1) >= 0x90) return 0;
  return length;
}

std::string TextLine(const AccessRecord& record) {
  char line[1024];
  std::snprintf(line, sizeof line, "%s %s \"%s %s %s\" %d %zu screen=%s statements=%s %.1fms\n",
                record.time.c_str(), record.remote.c_str(),
                record.method.empty() ? "-" : LogSafe(record.method, 16).c_str(),
                record.path.empty() ? "-" : LogSafe(record.path).c_str(), record.version.c_str(),
                record.status, record.bytes, record.screen.c_str(), record.statements.c_str(),
                record.duration_ms);
  return line;
}

std::string JsonLine(const AccessRecord& record) {
  const auto text = [](std::string_view value, size_t limit = 256) {
    return "\"" + JsonEscaped(value, limit) + "\"";
  };
  const bool counted = record.statements != "-" && !record.statements.empty() &&
                       record.statements.find_first_not_of("0123456789") == std::string::npos;
  char duration[32];
  std::snprintf(duration, sizeof duration, "%.1f", record.duration_ms);
  return "{\"time\":" + text(record.time) + ",\"remote\":" + text(record.remote) +
         ",\"method\":" + text(record.method, 16) + ",\"path\":" + text(record.path) +
         ",\"status\":" + std::to_string(record.status) +
         ",\"bytes\":" + std::to_string(record.bytes) + ",\"screen\":" + text(record.screen) +
         ",\"statements\":" + (counted ? record.statements : "null") +
         ",\"duration_ms\":" + duration + "}\n";
}

}  // namespace

std::string JsonEscaped(std::string_view text, size_t limit) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string escaped;
  size_t i = 0;
  for (; i < text.size() && i < limit;) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c == '"' || c == '\\') {
      escaped += '\\';
      escaped += static_cast<char>(c);
    } else if (c < 0x20 || c == 0x7f) {
      escaped += "\\u00";
      escaped += kHex[c >> 4];
      escaped += kHex[c & 15];
    } else if (c >= 0x80) {
      const size_t length = Utf8SequenceLength(text.substr(i));
      if (length == 0) {
        escaped += "\\ufffd";
      } else {
        escaped.append(text.substr(i, length));
        i += length;
        continue;
      }
    } else {
      escaped += static_cast<char>(c);
    }
    ++i;
  }
  if (i < text.size()) escaped += "...";
  return escaped;
}

std::string LoggedPath(std::string_view path) {
  constexpr std::string_view kFeedFolder = "/feed/";
  const size_t at = path.find(kFeedFolder);
  if (at == std::string_view::npos || at + kFeedFolder.size() == path.size()) {
    return std::string(path);
  }
  return std::string(path.substr(0, at + kFeedFolder.size())) + "...";
}

std::string AccessLine(const AccessRecord& record, LogFormat format) {
  return format == LogFormat::kJson ? JsonLine(record) : TextLine(record);
}

}  // namespace tidewell
