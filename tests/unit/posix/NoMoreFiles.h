#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace quordalvane::posix {

/// While this object exists, this process can open no more files, and the system refuses to wait
/// for open files (`poll`).
class NoMoreFiles {
 public:
  NoMoreFiles() {
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
    const rlimit none{.rlim_cur = 0, .rlim_max = before_.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  }
  ~NoMoreFiles() { ::setrlimit(RLIMIT_NOFILE, &before_); }
  NoMoreFiles(const NoMoreFiles&) = delete;
  NoMoreFiles& operator=(const NoMoreFiles&) = delete;

 private:
  rlimit before_{};
};

}  // namespace quordalvane::posix
