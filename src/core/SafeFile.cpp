#include "core/SafeFile.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 18;

} // namespace

SafeFile::SafeFile(std::string_view path, WhenSame whenSame)
    : path_(ResolvePath(path)),
      work_(path_ + std::string(WorkExtension)) {
    // A file that may not be written must not be replaced by way of its folder.
    if (Global.TheDisk->IsFile(path_)) same_ = Global.TheDisk->Open(path_, Access::ReadWrite);
    if (Global.TheDisk->IsFolder(path_)) throw RunTimeFailure(75, path_);
    if (same_ && whenSame == WhenSame::Keep)
        version_ = same_->Version();
    else
        BeginWorkFile();
}

void SafeFile::BeginWorkFile() {
    const auto from = std::move(same_);
    file_ = Global.Files.Open(*Global.TheDisk, work_, Access::Create);
    if (written_ == 0) return;
    try {
        CopyWritten(*from);
    } catch (...) {
        Discard(); // whoever goes on after the failure must not commit a file that lacks its beginning
        throw;
    }
}

/// What was written before the first difference was kept nowhere but in the file itself.
void SafeFile::CopyWritten(DiskFile& from) {
    std::string block;
    for (std::uint64_t at = 0; at < written_; at += block.size()) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(written_ - at, BlockSize)));
        if (from.ReadAt(at, block.data(), block.size()) != block.size()) throw RunTimeFailure(75, path_);
        Global.Files.Use(file_).WriteAt(at, block);
    }
    // Behind the reading: what another program wrote into it meanwhile is not what was written here.
    if (from.Version() != version_) throw RunTimeFailure(75, path_);
}

bool SafeFile::StandsThere(std::uint64_t offset, std::string_view bytes) {
    std::string block(bytes.size(), '\0');
    return same_->ReadAt(offset, block.data(), block.size()) == bytes.size() && block == bytes;
}

void SafeFile::Put(std::uint64_t offset, std::string_view bytes) {
    if (same_ && StandsThere(offset, bytes)) return;
    if (same_) BeginWorkFile();
    Global.Files.Use(file_).WriteAt(offset, bytes);
}

SafeFile::~SafeFile() {
    if (!done_) Discard();
}

void SafeFile::Discard() noexcept {
    if (file_.Number == 0) return; // a work file that stands there is somebody else's
    try {
        Global.Files.Close(file_);
        Global.TheDisk->Remove(work_);
    } catch (...) { // the work file stays behind; the next start removes it
    }
}

void SafeFile::Drain() {
    Put(written_, pending_);
    written_ += pending_.size();
    pending_.clear();
}

void SafeFile::Write(std::string_view bytes) {
    pending_ += bytes;
    if (pending_.size() >= BlockSize) Drain();
}

void SafeFile::WriteLine(std::string_view line) {
    pending_ += line;
    Write("\r\n");
}

void SafeFile::Overwrite(std::uint64_t offset, std::string_view bytes) {
    if (offset + bytes.size() > Size()) throw RunTimeFailure(5, path_);
    Drain();
    Put(offset, bytes);
}

/// Closes the work file; false when there is none, the file itself being what was written.
bool SafeFile::Finish(bool flush) {
    Drain();
    if (same_ && same_->Size() == written_) {
        same_.reset();
        done_ = true;
        return false;
    }
    if (same_) BeginWorkFile();
    if (flush) Global.Files.Use(file_).Flush();
    Global.Files.Close(file_);
    return true;
}

void SafeFile::Commit(bool flush) {
    if (!Finish(flush)) return;
    Global.TheDisk->Rename(work_, path_);
    done_ = true;
    if (flush) Global.TheDisk->FlushFolder(std::string(FolderOf(path_)));
}

void SafeFile::CommitQuickly() {
    if (!Finish(false)) return;
    Global.TheDisk->RenameQuickly(work_, path_);
    done_ = true;
}

void WriteWholeFile(std::string_view path, std::string_view content, bool flush) {
    SafeFile file(path);
    file.Write(content);
    file.Commit(flush);
}

std::string ReadWholeFile(std::string_view path, std::uint64_t limit) {
    const std::string resolved = ResolvePath(path);
    const auto file = Global.TheDisk->Open(resolved, Access::Read);
    const std::uint64_t size = file->Size();
    if (size > limit) throw RunTimeFailure(6, resolved);
    std::string content(static_cast<std::size_t>(size), '\0');
    content.resize(file->ReadAt(0, content.data(), content.size()));
    return content;
}

std::uint64_t AppendLine(std::string_view path, std::string_view line) {
    const std::string resolved = ResolvePath(path);
    const bool there = Global.TheDisk->IsFile(resolved);
    const auto file = Global.TheDisk->Open(resolved, there ? Access::ReadWrite : Access::Create);
    const std::uint64_t end = file->Size();
    char last = '\n';
    if (end > 0) file->ReadAt(end - 1, &last, 1);
    std::string bytes = last == '\n' ? "" : "\r\n";
    bytes.append(line).append("\r\n");
    file->WriteAt(end, bytes);
    return end + bytes.size();
}
