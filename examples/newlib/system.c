/* The system calls that newlib asks for: output by semihosting, a heap between two symbols of the command file. */
#include "semihost.h"
#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>

int main(void);

extern char __heap_start[], __heap_end[];

void *_sbrk(int size) {
    static char *top = __heap_start;
    if (size > __heap_end - top) {
        errno = ENOMEM;
        return (void *)-1;
    }
    char *const old = top;
    top += size;
    return old;
}

int _write(int file, const char *data, int size) {
    (void)file;
    char piece[65];
    for (int done = 0; done < size;) {
        int n = 0;
        while (n < 64 && done < size) piece[n++] = data[done++];
        piece[n] = '\0';
        print(piece);
    }
    return size;
}

int _read(int file, char *data, int size) {
    (void)file, (void)data, (void)size;
    return 0;
}

int _close(int file) {
    (void)file;
    return -1;
}

int _lseek(int file, int offset, int from) {
    (void)file, (void)offset, (void)from;
    return 0;
}

int _fstat(int file, struct stat *status) {
    (void)file;
    status->st_mode = S_IFCHR;
    return 0;
}

int _isatty(int file) {
    (void)file;
    return 1;
}

int _getpid(void) { return 1; }

int _kill(int process, int signal) {
    (void)process, (void)signal;
    errno = EINVAL;
    return -1;
}

void _exit(int status) { leave(status); }

void _fini(void) {}

/* A program with more to do before main has its own. */
__attribute__((weak)) void start(void) { exit(main()); }
