#include "host/static_assets.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tidewell {
namespace {

std::string ReadWhole(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream body;
  body << in.rdbuf();
  return body.str();
}

std::string ContentTypeOf(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  if (extension == ".gif") return "image/gif";
  if (extension == ".png") return "image/png";
  if (extension == ".css") return "text/css; charset=utf-8";
  return "application/octet-stream";
}

}  // namespace

StaticAssets StaticAssets::Load(const std::string& folder) {
  namespace fs = std::filesystem;
  StaticAssets assets;
  fs::path root(folder);
  fs::path sheet = root / "tidewell.css";
  assets.assets_["tidewell.css"] = {ContentTypeOf(sheet), ReadWhole(sheet)};
  fs::path images = root / "images";
  if (!fs::is_directory(images)) throw std::runtime_error("no image folder at " + images.string());
  for (const fs::directory_entry& entry : fs::directory_iterator(images)) {
    if (!entry.is_regular_file()) continue;
    std::string name = "images/" + entry.path().filename().string();
    assets.assets_[name] = {ContentTypeOf(entry.path()), ReadWhole(entry.path())};
  }
  return assets;
}

const StaticAssets::Asset* StaticAssets::Find(std::string_view request_path) const {
  size_t last = request_path.rfind('/');
  if (last == std::string_view::npos) return nullptr;
  std::string_view file = request_path.substr(last + 1);
  std::string_view folder = request_path.substr(0, last);
  size_t before = folder.rfind('/');
  std::string_view folder_name = folder.substr(before == std::string_view::npos ? 0 : before + 1);
  std::string key = folder_name == "images" ? "images/" + std::string(file) : std::string(file);
  auto found = assets_.find(key);
  return found == assets_.end() ? nullptr : &found->second;
}

}  // namespace tidewell
