#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "platform/win/resource_folder.h"

TempResourceFolder::TempResourceFolder() {
  static int serial = 0;
  path_ = std::filesystem::path(testing::TempDir()) /
          ("zvwin_resources_" + std::to_string(getpid()) + "_" + std::to_string(++serial));
  std::filesystem::create_directories(path_);
  if (const char* old = std::getenv("ZIVARA_RESOURCES")) previous_ = old;
  setenv("ZIVARA_RESOURCES", path_.c_str(), 1);
}

TempResourceFolder::~TempResourceFolder() {
  if (previous_) {
    setenv("ZIVARA_RESOURCES", previous_->c_str(), 1);
  } else {
    unsetenv("ZIVARA_RESOURCES");
  }
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

void TempResourceFolder::Write(std::string_view relativePath, std::string_view content) const {
  std::filesystem::path file = path_ / relativePath;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}
