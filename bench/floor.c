/* The least that any program can do: reads the files and writes a number of bytes, in blocks, and
 * has them on the disk at the end.
 *
 *   floor BYTES OUT IN...      BYTES 0: reads only, and OUT is not made
 */
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

enum { Block = 256 * 1024 };

static char bytes[Block];

static int Fail(const char* what) {
    perror(what);
    return 1;
}

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    for (int k = 3; k < argc; ++k) {
        const int in = open(argv[k], O_RDONLY);
        ssize_t got = 0;
        if (in < 0) return Fail(argv[k]);
        while ((got = read(in, bytes, Block)) > 0) {
        }
        if (got < 0) return Fail(argv[k]);
        close(in);
    }
    long long left = atoll(argv[1]);
    if (left == 0) return 0;
    const int out = open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (out < 0) return Fail(argv[2]);
    while (left > 0) {
        const ssize_t put = write(out, bytes, left < Block ? (size_t)left : Block);
        if (put < 0) return Fail(argv[2]);
        left -= put;
    }
    if (fsync(out) != 0 || close(out) != 0) return Fail(argv[2]);
    return 0;
}
