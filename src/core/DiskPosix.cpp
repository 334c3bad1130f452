#include "core/Disk.h"

#ifndef _WIN32

#include "core/Failure.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int NumberFor(int error, int other) {
    switch (error) {
    case ENOENT:
        return 53;
    case ENOTDIR:
        return 76;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
        return 70;
    case ENOSPC:
    case EDQUOT:
        return 61;
    default:
        return other;
    }
}

/// Nanoseconds since some day.
std::uint64_t ModifiedAt(const struct stat& info) {
#ifdef __APPLE__
    const struct timespec& time = info.st_mtimespec;
#else
    const struct timespec& time = info.st_mtim;
#endif
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000U +
           static_cast<std::uint64_t>(time.tv_nsec);
}

class PosixFile final : public DiskFile {
public:
    PosixFile(int descriptor, std::string path) : descriptor_(descriptor), path_(std::move(path)) {}
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;
    ~PosixFile() override { ::close(descriptor_); }

    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            const ssize_t got = ::pread(descriptor_, static_cast<char*>(to) + done, size - done,
                                        static_cast<off_t>(offset + done));
            if (got == 0) break;
            if (got < 0) {
                if (errno == EINTR) continue;
                throw RunTimeFailure(NumberFor(errno, 57), path_);
            }
            done += static_cast<std::size_t>(got);
        }
        return done;
    }

    void WriteAt(std::uint64_t offset, std::string_view bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t put = ::pwrite(descriptor_, bytes.data() + done, bytes.size() - done,
                                         static_cast<off_t>(offset + done));
            if (put < 0) {
                if (errno == EINTR) continue;
                throw RunTimeFailure(NumberFor(errno, 57), path_);
            }
            done += static_cast<std::size_t>(put);
        }
    }

    std::uint64_t Size() override {
        struct stat info {};
        if (::fstat(descriptor_, &info) != 0) throw RunTimeFailure(57, path_);
        return static_cast<std::uint64_t>(info.st_size);
    }

    std::uint64_t Version() override {
        struct stat info {};
        if (::fstat(descriptor_, &info) != 0) throw RunTimeFailure(57, path_);
        std::uint64_t version = 0;
        for (const auto part :
             {static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino),
              static_cast<std::uint64_t>(info.st_size), ModifiedAt(info)}) {
            version = (version ^ part) * 0x9E3779B97F4A7C15U;
            version ^= version >> 29;
        }
        return version;
    }

    void Flush() override {
        while (::fsync(descriptor_) != 0) {
            if (errno != EINTR) throw RunTimeFailure(NumberFor(errno, 57), path_);
        }
    }

private:
    int descriptor_;
    std::string path_;
};

class PosixDisk final : public Disk {
public:
    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY; // a pipe under a file's name must not hold us up
        if (access == Access::Read) flags |= O_RDONLY;
        if (access == Access::ReadWrite) flags |= O_RDWR;
        if (access == Access::Create) flags |= O_RDWR | O_CREAT | O_TRUNC;
        const int descriptor = ::open(path.c_str(), flags, 0666);
        if (descriptor < 0) {
            const bool noFolder = errno == ENOENT && access == Access::Create;
            throw RunTimeFailure(noFolder ? 76 : NumberFor(errno, 75), path);
        }
        auto file = std::make_unique<PosixFile>(descriptor, path);
        struct stat info {};
        if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) throw RunTimeFailure(75, path);
        return file;
    }

    void Rename(const std::string& from, const std::string& to) override {
        if (::rename(from.c_str(), to.c_str()) != 0) throw RunTimeFailure(NumberFor(errno, 75), to);
    }

    // ext4 writes out a file that is to take the place of another one, and no two that change places.
    void RenameQuickly(const std::string& from, const std::string& to) override {
#ifdef RENAME_EXCHANGE
        if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE) == 0) {
            ::unlink(from.c_str()); // where that fails, the new content stands all the same
            return;
        }
#endif
        Rename(from, to); // nothing stands there yet, or the file system cannot do it
    }

    void FlushFolder(const std::string& folder) override {
        const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0) return;
        ::fsync(descriptor);
        ::close(descriptor);
    }

    bool Remove(const std::string& path) override {
        if (::unlink(path.c_str()) == 0) return true;
        if (errno == ENOENT || errno == ENOTDIR) return false;
        throw RunTimeFailure(NumberFor(errno, 75), path);
    }

    void MakeFolder(const std::string& path) override {
        if (::mkdir(path.c_str(), 0777) == 0) return;
        if (errno == EEXIST && IsFolder(path)) return;
        throw RunTimeFailure(NumberFor(errno, 75), path);
    }

    bool RemoveFolder(const std::string& path) override {
        return ::rmdir(path.c_str()) == 0;
    }

    bool IsFile(const std::string& path) override {
        struct stat info {};
        return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
    }

    bool IsFolder(const std::string& path) override {
        struct stat info {};
        return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    }

    std::vector<std::string> FilesIn(const std::string& folder) override {
        return Names(folder, false);
    }
    std::vector<std::string> FoldersIn(const std::string& folder) override {
        return Names(folder, true);
    }

    bool LockedByAnother(const std::string& path) override {
        const std::size_t slash = path.find_last_of('/');
        const std::size_t begin = slash == std::string::npos ? 0 : slash + 1;
        if (IsFile(path.substr(0, begin) + ".~lock." + path.substr(begin) + "#")) return true;

        const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        if (descriptor < 0) return false;
        struct flock range {};
        range.l_type = F_WRLCK;
        range.l_whence = SEEK_SET;
        bool locked = ::fcntl(descriptor, F_GETLK, &range) == 0 && range.l_type != F_UNLCK;
        if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) locked = locked || errno == EWOULDBLOCK;
        ::close(descriptor);
        return locked;
    }

private:
    std::vector<std::string> Names(const std::string& folder, bool folders) {
        std::vector<std::string> names;
        DIR* list = ::opendir(folder.empty() ? "." : folder.c_str());
        if (list == nullptr) return names;
        const std::string base = folder.empty() || folder.back() == '/' ? folder : folder + '/';
        while (const dirent* entry = ::readdir(list)) {
            const std::string name = entry->d_name;
            if (name == "." || name == "..") continue;
            // Most file systems say with the name what it is, which saves a look at each.
            const bool isKnown = entry->d_type == DT_REG || entry->d_type == DT_DIR;
            const bool fits = isKnown   ? entry->d_type == (folders ? DT_DIR : DT_REG)
                              : folders ? IsFolder(base + name)
                                        : IsFile(base + name);
            if (fits) names.push_back(name);
        }
        ::closedir(list);
        std::sort(names.begin(), names.end());
        return names;
    }
};

} // namespace

Disk& NativeDisk() {
    static PosixDisk disk;
    return disk;
}

#endif
