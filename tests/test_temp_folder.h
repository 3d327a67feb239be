// A fresh folder under /tmp for one test, removed with its files when the
// object goes; tests that keep state on disk never share a path.
#ifndef TESTS_TEST_TEMP_FOLDER_H
#define TESTS_TEST_TEMP_FOLDER_H

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

struct TempFolder {
  TempFolder() {
    char pattern[] = "/tmp/libconfig_test_XXXXXX";
    path = mkdtemp(pattern);
  }
  ~TempFolder() {
    if (DIR* dir = opendir(path.c_str())) {
      while (dirent* entry = readdir(dir))
        if (entry->d_name[0] != '.') unlink((path + "/" + entry->d_name).c_str());
      closedir(dir);
    }
    rmdir(path.c_str());
  }
  std::string path;
};

#endif  // TESTS_TEST_TEMP_FOLDER_H
