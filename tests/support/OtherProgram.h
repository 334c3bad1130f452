#pragma once

#include <string>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

/// Another program, that is a process, that holds a lock on a file as long as this object lives: on the whole
/// file, or on one byte of it.
class OtherProgram {
public:
    OtherProgram(const std::string& path, bool wholeFile) {
        int ready[2] = {}, done[2] = {};
        if (pipe(ready) != 0 || pipe(done) != 0) return;
        child_ = fork();
        if (child_ == 0) {
            close(ready[0]);
            close(done[1]);
            const int file = open(path.c_str(), O_RDWR);
            struct flock range {};
            range.l_type = F_WRLCK;
            range.l_whence = SEEK_SET;
            range.l_start = 100;
            range.l_len = 1;
            const bool locked =
                (wholeFile ? flock(file, LOCK_EX | LOCK_NB) : fcntl(file, F_SETLK, &range)) == 0;
            char byte = locked ? 'y' : 'n';
            if (write(ready[1], &byte, 1) != 1) _exit(1);
            (void)!read(done[0], &byte, 1); // until the test closes its end
            _exit(0);
        }
        close(ready[1]);
        close(done[0]);
        char byte = 'n';
        Holds = read(ready[0], &byte, 1) == 1 && byte == 'y';
        close(ready[0]);
        done_ = done[1];
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram() {
        close(done_);
        waitpid(child_, nullptr, 0);
    }

    bool Holds = false;

private:
    pid_t child_ = -1;
    int done_ = -1;
};
#endif
