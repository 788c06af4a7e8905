#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/number_raised.h"
#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

TEST(FileToText, FilesWithoutASizeOfTheirOwn) {
  EXPECT_TRUE(Make<LibFile>()->FileToText(u"\\proc\\self\\status").starts_with(u"Name:"));
}

TEST(FileToText, WhatMayNotBeRead) {
  const TemporaryDirectory here;
  here.Write("cerrado.txt", "x");
  chmod((here / "cerrado.txt").c_str(), 0);
  std::filesystem::create_directory(here / "directorio");
  chmod((here / "directorio").c_str(), 0);
  const auto files = Make<LibFile>();
  const auto raised = [&](const char* name) {
    return NumberRaisedBy([&] { files->FileToText(here.Host(name)); });
  };

  const bool is_root = geteuid() == 0;
  chmod((here / "").c_str(), 0755);
  if (is_root) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  EXPECT_EQ(raised("cerrado.txt"), 70);
  EXPECT_EQ(raised("directorio"), 75);
  if (is_root) {
    ASSERT_EQ(seteuid(0), 0);
  }
}

}  // namespace
}  // namespace tovalin
