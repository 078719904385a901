// SPDX-License-Identifier: MIT
#include "support/scratch_dir.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// A directory without its search bit would keep its content from being removed.
void OpenUp(const std::string& path) {
  std::error_code ignored;
  fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
  for (fs::recursive_directory_iterator entry(path, ignored), end; entry != end;
       entry.increment(ignored)) {
    if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
      fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
  }
}

}  // namespace

ScratchDir::ScratchDir(const std::string& name) {
  // Links are resolved first: the tool resolves what it prints, and /tmp may be a link.
  m_root = fs::canonical(fs::temp_directory_path()).string() + "/zvisp-test-XXXXXX";
  if (mkdtemp(m_root.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), m_root);
  }
  m_path = name.empty() ? m_root : m_root + "/" + name;
  fs::create_directories(m_path);
}

ScratchDir::~ScratchDir() {
  std::error_code failure;
  fs::remove_all(m_root, failure);
  if (!failure) return;
  OpenUp(m_root);
  fs::remove_all(m_root, failure);
}

void PreferScratchInMemory() {
  constexpr const char* kMemory = "/dev/shm";
  if (access(kMemory, W_OK | X_OK) == 0) setenv("TMPDIR", kMemory, 1);
}
