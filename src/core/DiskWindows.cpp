#include "core/Disk.h"

#ifdef _WIN32

#include "core/Failure.h"

#include <algorithm>

#include <windows.h>

namespace {

std::wstring Wide(const std::string& utf8) {
    if (utf8.empty()) return {};
    const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), size);
    return wide;
}

std::string Narrow(const wchar_t* wide) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) return {};
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();
    return utf8;
}

int NumberFor(DWORD error, int other) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return 53;
    case ERROR_PATH_NOT_FOUND:
        return 76;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
        return 70;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return 61;
    default:
        return other;
    }
}

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
    return place;
}

constexpr std::size_t MostAtOnce = std::size_t{1} << 28;

class WindowsFile final : public DiskFile {
public:
    WindowsFile(HANDLE handle, std::string path) : handle_(handle), path_(std::move(path)) {}
    WindowsFile(const WindowsFile&) = delete;
    WindowsFile& operator=(const WindowsFile&) = delete;
    ~WindowsFile() override { CloseHandle(handle_); }

    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            OVERLAPPED place = At(offset + done);
            DWORD got = 0;
            const auto piece = static_cast<DWORD>(std::min(size - done, MostAtOnce));
            if (!ReadFile(handle_, static_cast<char*>(to) + done, piece, &got, &place)) {
                if (GetLastError() == ERROR_HANDLE_EOF) break;
                throw RunTimeFailure(NumberFor(GetLastError(), 57), path_);
            }
            if (got == 0) break;
            done += got;
        }
        return done;
    }

    void WriteAt(std::uint64_t offset, std::string_view bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            OVERLAPPED place = At(offset + done);
            DWORD put = 0;
            const auto piece = static_cast<DWORD>(std::min(bytes.size() - done, MostAtOnce));
            if (!WriteFile(handle_, bytes.data() + done, piece, &put, &place) || put == 0) {
                throw RunTimeFailure(NumberFor(GetLastError(), 57), path_);
            }
            done += put;
        }
    }

    std::uint64_t Size() override {
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(handle_, &size)) throw RunTimeFailure(57, path_);
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    std::uint64_t Version() override {
        BY_HANDLE_FILE_INFORMATION info{};
        if (!GetFileInformationByHandle(handle_, &info)) throw RunTimeFailure(57, path_);
        std::uint64_t version = 0;
        for (const DWORD part :
             {info.dwVolumeSerialNumber, info.nFileIndexHigh, info.nFileIndexLow, info.nFileSizeHigh,
              info.nFileSizeLow, info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime}) {
            version = (version ^ part) * 0x9E3779B97F4A7C15U;
            version ^= version >> 29;
        }
        return version;
    }

    void Flush() override {
        if (!FlushFileBuffers(handle_)) throw RunTimeFailure(NumberFor(GetLastError(), 57), path_);
    }

private:
    HANDLE handle_;
    std::string path_;
};

class WindowsDisk final : public Disk {
public:
    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        const DWORD rights = access == Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
        const DWORD deed = access == Access::Create ? CREATE_ALWAYS : OPEN_EXISTING;
        // Shared, as everybody opens tables; deletion is shared so that a file can be replaced meanwhile.
        const DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        const HANDLE handle =
            CreateFileW(Wide(path).c_str(), rights, share, nullptr, deed, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) throw RunTimeFailure(NumberFor(GetLastError(), 75), path);
        return std::make_unique<WindowsFile>(handle, path);
    }

    void Rename(const std::string& from, const std::string& to) override {
        const DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
        if (!MoveFileExW(Wide(from).c_str(), Wide(to).c_str(), how)) {
            throw RunTimeFailure(NumberFor(GetLastError(), 75), to);
        }
    }

    // A rename here is written through by itself.
    void FlushFolder(const std::string&) override {}

    bool Remove(const std::string& path) override {
        if (DeleteFileW(Wide(path).c_str())) return true;
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return false;
        throw RunTimeFailure(NumberFor(error, 75), path);
    }

    void MakeFolder(const std::string& path) override {
        if (CreateDirectoryW(Wide(path).c_str(), nullptr) || IsFolder(path)) return;
        throw RunTimeFailure(NumberFor(GetLastError(), 75), path);
    }

    bool RemoveFolder(const std::string& path) override { return RemoveDirectoryW(Wide(path).c_str()) != 0; }

    bool IsFile(const std::string& path) override {
        const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    }

    bool IsFolder(const std::string& path) override {
        const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    }

    std::vector<std::string> FilesIn(const std::string& folder) override { return Names(folder, false); }
    std::vector<std::string> FoldersIn(const std::string& folder) override { return Names(folder, true); }

    bool LockedByAnother(const std::string& path) override {
        const std::size_t slash = path.find_last_of("/\\");
        const std::size_t begin = slash == std::string::npos ? 0 : slash + 1;
        if (IsFile(path.substr(0, begin) + ".~lock." + path.substr(begin) + "#")) return true;

        const DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        const HANDLE handle = CreateFileW(Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
        OVERLAPPED all{};
        const bool free = LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, MAXDWORD,
                                     MAXDWORD, &all) != 0;
        CloseHandle(handle);
        return !free;
    }

private:
    static std::vector<std::string> Names(const std::string& folder, bool folders) {
        std::vector<std::string> names;
        WIN32_FIND_DATAW found{};
        const HANDLE search = FindFirstFileW(Wide((folder.empty() ? "." : folder) + "\\*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) return names;
        do {
            const std::string name = Narrow(found.cFileName);
            const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            if (name != "." && name != ".." && isFolder == folders) names.push_back(name);
        } while (FindNextFileW(search, &found));
        FindClose(search);
        std::sort(names.begin(), names.end());
        return names;
    }
};

} // namespace

Disk& NativeDisk() {
    static WindowsDisk disk;
    return disk;
}

#endif
