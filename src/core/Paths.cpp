#include "core/Paths.h"

#include "core/CodePage.h"
#include "core/Disk.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/SafeFile.h"

#include <algorithm>
#include <exception>

namespace {

#ifdef _WIN32
constexpr char Separator = '\\';
#else
constexpr char Separator = '/';
#endif

bool IsSeparator(char c) {
    return c == '/' || c == '\\';
}

std::string Native(std::string_view path) {
    std::string text(path);
    std::replace_if(text.begin(), text.end(), IsSeparator, Separator);
    return text;
}

std::string_view WithoutTrailingSeparator(std::string_view path) {
    while (path.size() > 1 && IsSeparator(path.back())) path.remove_suffix(1);
    return path;
}

bool IsDrive(std::string_view part) {
    return part.size() == 2 && part[1] == ':';
}

/// A name in one case: ASCII letters and the letters with accents of the code page, as UTF-8 writes
/// them.
std::string FoldName(std::string_view name) {
    std::string folded(name);
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(folded[i]); };
    for (std::size_t i = 0; i < folded.size(); ++i) {
        if (byte(i) >= 'a' && byte(i) <= 'z') folded[i] = static_cast<char>(byte(i) - 32);
        if (i == 0) continue;
        const unsigned char lead = byte(i - 1);
        const unsigned char c = byte(i);
        if (lead == 0xC3 && c >= 0xA0 && c <= 0xBE && c != 0xB7) { // à to þ, without the division sign
            folded[i] = static_cast<char>(c - 0x20);
        } else if (lead == 0xC3 && c == 0xBF) { // ÿ and Ÿ lie in different rows
            folded[i - 1] = '\xC5';
            folded[i] = '\xB8';
        } else if (lead == 0xC5 && (c == 0x93 || c == 0xA1 || c == 0xBE)) { // œ, š, ž
            folded[i] = static_cast<char>(c - 1);
        }
    }
    return folded;
}

/// The name in `folder` that differs from `name` only in case; `name` itself when there is none.
std::string Spelling(const std::string& folder, const std::string& name) {
    const std::string wanted = FoldName(name);
    std::string found;
    const auto look = [&](const std::vector<std::string>& names) {
        for (const std::string& each : names) {
            if (FoldName(each) == wanted && (found.empty() || each < found)) found = each;
        }
    };
    look(Global.TheDisk->FilesIn(folder));
    look(Global.TheDisk->FoldersIn(folder));
    return found.empty() ? name : found;
}

} // namespace

std::string AddBackslash(std::string_view path) {
    while (!path.empty() && path.back() == ' ') path.remove_suffix(1);
    std::string text(path);
    if (text.empty() || !IsSeparator(text.back())) text += Separator;
    return text;
}

bool FileExists(std::string_view path) noexcept {
    try {
        const std::string resolved = ResolvePath(WithoutTrailingSeparator(path));
        if (!Global.TheDisk->IsFile(resolved)) return false;
        Global.TheDisk->Open(resolved, Access::Read);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void MakePath(std::string_view path) {
    const std::string native = Native(path);
    for (std::size_t end = native.find(Separator, 1); true; end = native.find(Separator, end + 1)) {
        const std::string step = ResolvePath(native.substr(0, end));
        if (!step.empty() && !IsDrive(step) && !Global.TheDisk->IsFolder(step)) {
            Global.TheDisk->MakeFolder(step);
        }
        if (end == std::string::npos || end + 1 == native.size()) return;
    }
}

std::string ResolvePath(std::string_view path) {
    std::string native = Native(path);
    // The system would read it up to the NUL and open another file.
    if (native.find('\0') != std::string::npos) throw RunTimeFailure(52, native.substr(0, native.find('\0')));
    if (native.empty() || Global.TheDisk->IsFile(native) || Global.TheDisk->IsFolder(native)) return native;

    std::string done;
    std::size_t begin = 0;
    while (begin < native.size()) {
        std::size_t end = native.find(Separator, begin);
        if (end == std::string::npos) end = native.size();
        const std::string name = native.substr(begin, end - begin);
        if (!name.empty() && name != "." && name != ".." && !IsDrive(name)) {
            const std::string exact = done + name;
            const bool there = Global.TheDisk->IsFile(exact) || Global.TheDisk->IsFolder(exact);
            if (there)
                done = exact;
            else
                done += Spelling(done, name);
        } else {
            done += name;
        }
        if (end < native.size()) done += Separator;
        begin = end + 1;
    }
    return done;
}

std::string_view FileNameOf(std::string_view path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.size() - FileNameOf(path).size());
}

std::string_view ExtensionOf(std::string_view path) {
    const std::string_view name = FileNameOf(path);
    const std::size_t point = name.find_last_of('.');
    return point == std::string_view::npos ? std::string_view() : name.substr(point);
}

std::string NameToPath(std::string_view codePageName) {
    return CodePageToUtf8(codePageName);
}

std::string PathToName(std::string_view path) {
    return Utf8ToCodePage(path);
}

bool IsPlainFileName(std::string_view name) {
    if (name.empty() || name == "." || name == "..") return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return IsSeparator(c) || c == ':' || static_cast<unsigned char>(c) < 32 || c == 127;
    });
}

bool IsNameForNewFile(std::string_view name) {
    if (!IsPlainFileName(name) || name.find_first_of("*?\"<>|") != std::string_view::npos) return false;
    if (name.back() == '.' || name.back() == ' ') return false;
    std::string device = FoldName(name.substr(0, name.find('.')));
    device.resize(device.find_last_not_of(' ') + 1);
    constexpr std::string_view Devices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    // Also with the three small digits of code page 1252, in UTF-8.
    constexpr std::string_view Numbers[] = {"1", "2", "3", "4",        "5",        "6",
                                            "7", "8", "9", "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
    const bool numbered =
        (device.starts_with("COM") || device.starts_with("LPT")) &&
        std::find(std::begin(Numbers), std::end(Numbers), device.substr(3)) != std::end(Numbers);
    return !numbered && std::find(std::begin(Devices), std::end(Devices), device) == std::end(Devices);
}

std::vector<std::string> FilesWithExtension(std::string_view folder, std::string_view extension) {
    if (folder.empty()) return {}; // a path that nobody has set is not the current folder
    std::vector<std::string> names = Global.TheDisk->FilesIn(ResolvePath(folder));
    const std::string wanted = FoldName(extension);
    std::erase_if(names, [&](const std::string& name) {
        return !wanted.empty() && FoldName(ExtensionOf(name)) != wanted;
    });
    std::stable_sort(names.begin(), names.end(),
                     [](const std::string& a, const std::string& b) { return FoldName(a) < FoldName(b); });
    return names;
}

std::vector<std::string> NamesWithExtension(std::string_view folder, std::string_view extension) {
    std::vector<std::string> names = FilesWithExtension(folder, extension);
    for (std::string& name : names) name.resize(name.size() - extension.size());
    return names;
}

void RemoveQuietly(std::string_view path) noexcept {
    try {
        Global.TheDisk->Remove(ResolvePath(path));
    } catch (const std::exception&) { // it stays behind; whoever needs its place is told
    }
}

void CopyOver(std::string_view from, std::string_view to, bool flush) {
    const auto source = Global.TheDisk->Open(ResolvePath(from), Access::Read);
    SafeFile target(to);
    std::string block(std::size_t{1} << 18, '\0');
    for (std::uint64_t offset = 0; true;) {
        const std::size_t got = source->ReadAt(offset, block.data(), block.size());
        if (got == 0) break;
        target.Write(std::string_view(block.data(), got));
        offset += got;
    }
    target.Commit(flush);
}
