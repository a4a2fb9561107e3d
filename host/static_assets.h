#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tidewell {

// The images and the style sheet the pages name, read once at start and served from memory.
// Pages link them relative to themselves ("images/nav_line.gif", "tidewell.css"), so any path
// that ends in one of those names finds the file, whatever folder the page lives in.
class StaticAssets {
 public:
  struct Asset {
    std::string content_type;
    std::string body;
  };

  // Reads <folder>/tidewell.css and <folder>/images/*; throws std::runtime_error naming what
  // is missing.
  static StaticAssets Load(const std::string& folder);

  const Asset* Find(std::string_view request_path) const;
  size_t size() const { return assets_.size(); }

 private:
  std::map<std::string, Asset, std::less<>> assets_;  // "tidewell.css", "images/x.gif"
};

}  // namespace tidewell
