#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace quordalvane::test {

/// A folder that is removed with the object.
class TemporaryFolder {
 public:
  TemporaryFolder() { EXPECT_NE(::mkdtemp(path_.data()), nullptr); }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }

  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_ = testing::TempDir() + "quorport-XXXXXX";
};

}  // namespace quordalvane::test
