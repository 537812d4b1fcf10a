// Whether two names mean the same file.
#pragma once

#include <string>

#include <sys/types.h>

// A file that is there is told by its device and inode, one that is not there yet by those of its
// folder and its name in it. Links are followed.
struct FILEIDENTITY {
  dev_t device = 0;
  ino_t inode = 0;
  std::string name;  // empty when the file is there
  bool known = false;

  bool SameAs(const FILEIDENTITY& other) const {
    return known && other.known && device == other.device && inode == other.inode &&
           name == other.name;
  }
};

FILEIDENTITY IdentityOf(const std::string& name);
