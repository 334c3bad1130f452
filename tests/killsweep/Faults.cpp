// A library that is loaded before the C library (LD_PRELOAD) and makes the n-th call that changes
// something below one folder go wrong. What it is to do stands in the environment:
//
//   KILLSWEEP_FOLDER  the folder, with a trailing separator; calls elsewhere pass by uncounted
//   KILLSWEEP_MODE    watch, before, within, full or error
//   KILLSWEEP_AT      the n-th call, from 1
//   KILLSWEEP_LOG     a folder outside the first one for what the library has to tell
//
// `watch` breaks nothing. It writes a line for each counted call into LOG/calls, and before a
// rename keeps the renamed file's content as LOG/<number of the call>, unless it is a folder, and its
// path as the link LOG/<number of the call>.from. The others make the file
// LOG/struck when the n-th call has come: `before` kills the process before the call, `within` after
// half of the bytes of a write or directly after any other call, `full` writes half of the bytes and
// has the disk full from then on, `error` fails the one call with EIO.
//
// A call that makes files longer in a way that cannot be broken here ends the process with 99: a
// sweep that passes it by would prove nothing.

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr int NotFollowed = 99;

enum class Mode { Off, Watch, Before, Within, Full, Error };

/// What a call does to the disk's room.
enum class Kind {
    Write,  ///< adds bytes, and can be cut in the middle
    Makes,  ///< needs room: a new file or folder, a flush
    Moves,  ///< changes what is there: a rename, a truncation
    Removes ///< gives room back
};

std::string Setting(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

/// Nothing here goes through the calls that are replaced below.
void WriteOut(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const long put = syscall(SYS_write, descriptor, text.data(), text.size());
        if (put <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(put));
    }
}

int OpenForLog(const std::string& path) {
    return static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
}

std::string LinkTarget(const std::string& link) {
    char text[4096];
    const ssize_t size = ::readlink(link.c_str(), text, sizeof text);
    return size < 0 ? std::string() : std::string(text, static_cast<std::size_t>(size));
}

std::string PathOf(int descriptor) {
    return LinkTarget("/proc/self/fd/" + std::to_string(descriptor));
}

std::string PathAt(int folder, const char* path) {
    if (path == nullptr) return {};
    if (*path == '/') return path;
    return (folder == AT_FDCWD ? LinkTarget("/proc/self/cwd") : PathOf(folder)) + "/" + path;
}

class Plan {
public:
    Plan() {
        folder_ = Setting("KILLSWEEP_FOLDER");
        log_ = Setting("KILLSWEEP_LOG");
        at_ = std::atol(Setting("KILLSWEEP_AT").c_str());
        const std::string mode = Setting("KILLSWEEP_MODE");
        if (mode == "watch") mode_ = Mode::Watch;
        if (mode == "before") mode_ = Mode::Before;
        if (mode == "within") mode_ = Mode::Within;
        if (mode == "full") mode_ = Mode::Full;
        if (mode == "error") mode_ = Mode::Error;
    }

    /// The folder itself, too: it is flushed.
    bool Covers(const std::string& path) const {
        return mode_ != Mode::Off && (path + "/").compare(0, folder_.size(), folder_) == 0;
    }

    /// A call that is not replaced by one that can be broken.
    void Refuse(const char* call, const std::string& path) const {
        if (!Covers(path)) return;
        WriteOut(2, std::string("killsweep: ") + call + " on " + path + " cannot be followed\n");
        _exit(NotFollowed);
    }

    /// Makes one call that writes `size` bytes; `call` makes it for as many of them as it is told.
    template <typename Call>
    ssize_t Write(const char* name, const std::string& path, std::size_t size, Call&& call) {
        if (!Covers(path)) return call(size);
        if (full_) return Failed(ENOSPC);
        if (!Strikes(name, path)) return call(size);
        if (mode_ == Mode::Before) Die();
        if (mode_ == Mode::Error) return Failed(EIO);
        const std::size_t half = size / 2;
        full_ = mode_ == Mode::Full;
        if (half == 0 && full_) return Failed(ENOSPC);
        const ssize_t put = half == 0 ? 0 : call(half);
        if (mode_ == Mode::Within) Die();
        return put;
    }

    /// Makes any other call.
    template <typename Call>
    int Do(const char* name, const std::string& path, Kind kind, Call&& call) {
        if (!Covers(path)) return call();
        if (full_ && kind == Kind::Makes) return Failed(ENOSPC);
        if (!Strikes(name, path)) return call();
        if (mode_ == Mode::Before) Die();
        if (mode_ == Mode::Error) return Failed(EIO);
        full_ = mode_ == Mode::Full;
        if (full_ && kind != Kind::Removes) return Failed(ENOSPC);
        const int result = call();
        if (mode_ == Mode::Within) Die();
        return result;
    }

    void KeepBeforeRename(const std::string& from, const std::string& to) const {
        if (mode_ != Mode::Watch || !Covers(to)) return;
        const std::string kept = log_ + std::to_string(calls_ + 1);
        syscall(SYS_symlinkat, from.c_str(), AT_FDCWD, (kept + ".from").c_str());
        syscall(SYS_linkat, AT_FDCWD, from.c_str(), AT_FDCWD, kept.c_str(), 0); // fails for a folder
    }

private:
    /// Counts a call. True when it is the one.
    bool Strikes(const char* name, const std::string& path) {
        ++calls_;
        if (mode_ == Mode::Watch) {
            const int calls = OpenForLog(log_ + "calls");
            WriteOut(calls, std::to_string(calls_) + " " + name + " " + path + "\n");
            syscall(SYS_close, calls);
            return false;
        }
        if (calls_ != at_) return false;
        const int struck = OpenForLog(log_ + "struck");
        WriteOut(struck, std::string(name) + " " + path);
        syscall(SYS_close, struck);
        return true;
    }

    static int Failed(int error) {
        errno = error;
        return -1;
    }

    [[noreturn]] static void Die() {
        syscall(SYS_kill, syscall(SYS_getpid), 9);
        _exit(NotFollowed); // never reached: nothing outlives that signal
    }

    std::string folder_, log_;
    Mode mode_ = Mode::Off;
    long at_ = 0;
    long calls_ = 0;
    bool full_ = false;
};

Plan& ThePlan() {
    static Plan plan;
    return plan;
}

int OpenAt(int folder, const char* path, int flags, mode_t mode) {
    const auto open = [&] { return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode)); };
    if ((flags & (O_CREAT | O_TRUNC)) == 0) return open();
    return ThePlan().Do("open", PathAt(folder, path), Kind::Makes, open);
}

int RenameAt(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    const std::string target = PathAt(toFolder, to);
    ThePlan().KeepBeforeRename(PathAt(fromFolder, from), target);
    return ThePlan().Do("rename", target, Kind::Moves, [&] {
        return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    });
}

int UnlinkAt(int folder, const char* path, int flags) {
    return ThePlan().Do(flags == AT_REMOVEDIR ? "rmdir" : "unlink", PathAt(folder, path), Kind::Removes,
                        [&] { return static_cast<int>(syscall(SYS_unlinkat, folder, path, flags)); });
}

ssize_t WriteAt(int descriptor, const void* bytes, std::size_t size, off_t offset) {
    return ThePlan().Write("write", PathOf(descriptor), size, [&](std::size_t part) {
        return static_cast<ssize_t>(syscall(SYS_pwrite64, descriptor, bytes, part, offset));
    });
}

/// Several pieces go out as one: only then can their bytes be cut in the middle.
std::string Joined(const iovec* pieces, int count) {
    std::string all;
    for (int k = 0; k < count; ++k) {
        all.append(static_cast<const char*>(pieces[k].iov_base), pieces[k].iov_len);
    }
    return all;
}

bool Writes(const char* mode) {
    return std::strpbrk(mode, "wa+") != nullptr;
}

FILE* OpenStream(const char* path, const char* mode) {
    if (Writes(mode)) ThePlan().Refuse("fopen for writing", PathAt(AT_FDCWD, path));
    int flags = O_CLOEXEC | (std::strchr(mode, '+') != nullptr ? O_RDWR : Writes(mode) ? O_WRONLY : O_RDONLY);
    if (std::strchr(mode, 'w') != nullptr) flags |= O_CREAT | O_TRUNC;
    if (std::strchr(mode, 'a') != nullptr) flags |= O_CREAT | O_APPEND;
    const long descriptor = syscall(SYS_openat, AT_FDCWD, path, flags, 0666);
    return descriptor < 0 ? nullptr : fdopen(static_cast<int>(descriptor), mode);
}

} // namespace

// The names of the C library, with and without the mark of large files.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

extern "C" {

int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return OpenAt(AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return OpenAt(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return OpenAt(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return OpenAt(folder, path, flags, mode);
}

int creat(const char* path, mode_t mode) {
    return OpenAt(AT_FDCWD, path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

int creat64(const char* path, mode_t mode) {
    return OpenAt(AT_FDCWD, path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

FILE* fopen(const char* path, const char* mode) {
    return OpenStream(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    return OpenStream(path, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    return ThePlan().Write("write", PathOf(descriptor), size, [&](std::size_t part) {
        return static_cast<ssize_t>(syscall(SYS_write, descriptor, bytes, part));
    });
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
    return WriteAt(descriptor, bytes, size, offset);
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset) {
    return WriteAt(descriptor, bytes, size, offset);
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
    const std::string all = Joined(pieces, count);
    return write(descriptor, all.data(), all.size());
}

ssize_t pwritev(int descriptor, const iovec* pieces, int count, off_t offset) {
    const std::string all = Joined(pieces, count);
    return WriteAt(descriptor, all.data(), all.size(), offset);
}

ssize_t pwritev64(int descriptor, const iovec* pieces, int count, off64_t offset) {
    const std::string all = Joined(pieces, count);
    return WriteAt(descriptor, all.data(), all.size(), offset);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size,
                        unsigned flags) {
    ThePlan().Refuse("copy_file_range", PathOf(to));
    return static_cast<ssize_t>(syscall(SYS_copy_file_range, from, fromOffset, to, toOffset, size, flags));
}

ssize_t sendfile(int to, int from, off_t* offset, size_t size) {
    ThePlan().Refuse("sendfile", PathOf(to));
    return static_cast<ssize_t>(syscall(SYS_sendfile, to, from, offset, size));
}

ssize_t sendfile64(int to, int from, off64_t* offset, size_t size) {
    ThePlan().Refuse("sendfile", PathOf(to));
    return static_cast<ssize_t>(syscall(SYS_sendfile, to, from, offset, size));
}

ssize_t splice(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size, unsigned flags) {
    ThePlan().Refuse("splice", PathOf(to));
    return static_cast<ssize_t>(syscall(SYS_splice, from, fromOffset, to, toOffset, size, flags));
}

void* mmap(void* where, size_t size, int protection, int flags, int descriptor, off_t offset) {
    if ((flags & MAP_SHARED) != 0 && (protection & PROT_WRITE) != 0 && descriptor >= 0) {
        ThePlan().Refuse("mmap for writing", PathOf(descriptor));
    }
    return reinterpret_cast<void*>(syscall(SYS_mmap, where, size, protection, flags, descriptor, offset));
}

int ftruncate(int descriptor, off_t size) {
    return ThePlan().Do("ftruncate", PathOf(descriptor), Kind::Moves,
                        [&] { return static_cast<int>(syscall(SYS_ftruncate, descriptor, size)); });
}

int ftruncate64(int descriptor, off64_t size) {
    return ftruncate(descriptor, size);
}

int truncate(const char* path, off_t size) {
    return ThePlan().Do("truncate", PathAt(AT_FDCWD, path), Kind::Moves,
                        [&] { return static_cast<int>(syscall(SYS_truncate, path, size)); });
}

int truncate64(const char* path, off64_t size) {
    return truncate(path, size);
}

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
    return ThePlan().Do("fallocate", PathOf(descriptor), Kind::Makes, [&] {
        return static_cast<int>(syscall(SYS_fallocate, descriptor, mode, offset, size));
    });
}

/// Fails by its result, not by errno.
int posix_fallocate(int descriptor, off_t offset, off_t size) {
    return fallocate(descriptor, 0, offset, size) == 0 ? 0 : errno;
}

/// A kill takes nothing from the system's buffers, so that a flush may be left out; it is counted
/// and can fail.
int fsync(int descriptor) {
    const std::string path = PathOf(descriptor);
    if (!ThePlan().Covers(path)) return static_cast<int>(syscall(SYS_fsync, descriptor));
    return ThePlan().Do("fsync", path, Kind::Makes, [] { return 0; });
}

int fdatasync(int descriptor) {
    return fsync(descriptor);
}

int rename(const char* from, const char* to) {
    return RenameAt(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) {
    return RenameAt(fromFolder, from, toFolder, to, 0);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    return RenameAt(fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path) {
    return UnlinkAt(AT_FDCWD, path, 0);
}

int unlinkat(int folder, const char* path, int flags) {
    return UnlinkAt(folder, path, flags);
}

int rmdir(const char* path) {
    return UnlinkAt(AT_FDCWD, path, AT_REMOVEDIR);
}

int remove(const char* path) {
    struct stat info {};
    const bool folder = ::lstat(path, &info) == 0 && S_ISDIR(info.st_mode);
    return UnlinkAt(AT_FDCWD, path, folder ? AT_REMOVEDIR : 0);
}

int mkdir(const char* path, mode_t mode) {
    return ThePlan().Do("mkdir", PathAt(AT_FDCWD, path), Kind::Makes,
                        [&] { return static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode)); });
}

int mkdirat(int folder, const char* path, mode_t mode) {
    return ThePlan().Do("mkdir", PathAt(folder, path), Kind::Makes,
                        [&] { return static_cast<int>(syscall(SYS_mkdirat, folder, path, mode)); });
}

int link(const char* from, const char* to) {
    return ThePlan().Do("link", PathAt(AT_FDCWD, to), Kind::Makes, [&] {
        return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
    });
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    return ThePlan().Do("link", PathAt(toFolder, to), Kind::Makes, [&] {
        return static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
    });
}

int symlink(const char* target, const char* link) {
    return ThePlan().Do("symlink", PathAt(AT_FDCWD, link), Kind::Makes,
                        [&] { return static_cast<int>(syscall(SYS_symlinkat, target, AT_FDCWD, link)); });
}
}
