// A resource folder made up by a test: files written under a fresh temporary
// folder that ZIVARA_RESOURCES points at while the object lives.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

class TempResourceFolder {
 public:
  TempResourceFolder();
  ~TempResourceFolder();
  TempResourceFolder(const TempResourceFolder&) = delete;
  TempResourceFolder& operator=(const TempResourceFolder&) = delete;

  // Writes `content` to `relativePath` ("strings/a.txt"), making folders.
  void Write(std::string_view relativePath, std::string_view content) const;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  std::optional<std::string> previous_;
};
