#include "handheld/line/FolderLock.h"

#include "handheld/Refusal.h"

#include <QFile>
#include <QLockFile>

std::shared_ptr<void> LockFolder(const std::string& folder) {
    auto lock =
        std::make_shared<QLockFile>(QFile::decodeName(folder.c_str()) + QStringLiteral("Handheld.lock"));
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) return lock;
    if (lock->error() == QLockFile::LockFailedError) {
        throw Refusal("another command is using the handheld in " + folder);
    }
    throw Refusal("the handheld in " + folder + " cannot be locked: Handheld.lock cannot be written");
}
