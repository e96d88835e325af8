#include "file_replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace zvgrid::detail {
namespace {

// Closes and removes the temporary file unless it was renamed into place.
class TemporaryFile {
 public:
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!path_.empty()) ::unlink(path_.c_str());
  }

  // A new file beside `target`, named after it; the errno of a failure.
  int Create(const std::string& target) {
    const size_t slash = target.rfind('/');
    const size_t nameAt = slash == std::string::npos ? 0 : slash + 1;
    const std::string stem = target.substr(0, nameAt) + "." + target.substr(nameAt) + ".";
    // A few tries against names left by another process; O_EXCL never reuses one.
    for (int attempt = 0; attempt < 16; ++attempt) {
      static unsigned serial = 0;
      std::string candidate =
          stem + std::to_string(::getpid()) + "-" + std::to_string(++serial) + ".tmp";
      fd_ = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
      if (fd_ >= 0) {
        path_ = std::move(candidate);
        return 0;
      }
      if (errno != EEXIST) return errno;
    }
    return EEXIST;
  }

  int Write(std::string_view text) {
    while (!text.empty()) {
      const ssize_t written = ::write(fd_, text.data(), text.size());
      if (written < 0) {
        if (errno == EINTR) continue;
        return errno;
      }
      text.remove_prefix(static_cast<size_t>(written));
    }
    return 0;
  }

  // Flushes to the device and closes: a full disk may only show here.
  int Finish(const struct stat* replaced) {
    if (replaced != nullptr && ::fchmod(fd_, replaced->st_mode & 07777) != 0) return errno;
    if (::fsync(fd_) != 0) return errno;
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) != 0 ? errno : 0;
  }

  int RenameTo(const std::string& target) {
    if (::rename(path_.c_str(), target.c_str()) != 0) return errno;
    path_.clear();
    return 0;
  }

 private:
  int fd_ = -1;
  std::string path_;
};

}  // namespace

int ReplaceFile(const std::string& path, std::string_view text) {
  if (path.empty()) return ENOENT;
  // A link is followed, so that the file it names is replaced, not the link.
  std::string target = path;
  if (char* resolved = ::realpath(path.c_str(), nullptr); resolved != nullptr) {
    target = resolved;
    std::free(resolved);
  }
  struct stat existing {};
  const bool exists = ::stat(target.c_str(), &existing) == 0;
  if ((exists && S_ISDIR(existing.st_mode)) || path.back() == '/') return EISDIR;
  // Renaming would replace a file that the user may not write to.
  if (exists && ::access(target.c_str(), W_OK) != 0) return errno;

  TemporaryFile temporary;
  if (int fault = temporary.Create(target)) return fault;
  if (int fault = temporary.Write(text)) return fault;
  if (int fault = temporary.Finish(exists ? &existing : nullptr)) return fault;
  if (int fault = temporary.RenameTo(target)) return fault;
  // The rename itself reaches the device with the folder's entry.
  const size_t slash = target.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
  const int folderFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folderFd >= 0) {
    ::fsync(folderFd);
    ::close(folderFd);
  }
  return 0;
}

std::string FileFault(int fault) {
  switch (fault) {
    case ENOSPC:
      return "no space left on device";
    case EDQUOT:
      return "the disk quota is used up";
    case ENOENT:
    case ENOTDIR:
      return "no such folder";
    case EISDIR:
      return "is a folder";
    case EACCES:
    case EPERM:
      return "permission denied";
    case EROFS:
      return "the file system is read-only";
    case EFBIG:
      return "the file is too large";
    default: {
      std::string text = std::strerror(fault);
      if (!text.empty())
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
      return text;
    }
  }
}

}  // namespace zvgrid::detail
