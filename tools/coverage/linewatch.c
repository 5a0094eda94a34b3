// Notes which lines of an unchanged program run. Preloaded, it puts a breakpoint on the first byte of every
// line that `lines.py` has listed for the program, and takes each away when it is hit: what runs a second
// time runs at full speed. Does nothing in programs that have no list.
//
//   LINEWATCH=FOLDER      holds NAME.addresses (64-bit offsets, sorted) for each program, and takes NAME.hits
//                         (one byte for each offset), which all runs of the program share
#define _GNU_SOURCE
#include <fcntl.h>
#include <link.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <ucontext.h>
#include <unistd.h>

static const uint64_t *offsets;
static size_t count;
static unsigned char *hits;
static unsigned char *originals;
static uintptr_t base;

static void *mapped(const char *name, const char *ending, size_t size, int how)
{
    char path[4096];
    snprintf(path, sizeof path, "%s/%s%s", getenv("LINEWATCH"), name, ending);
    const int file = open(path, (how == MAP_SHARED ? O_RDWR | O_CREAT : O_RDONLY) | O_CLOEXEC, 0666);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) {
        return NULL;
    }
    if (size == 0) {
        size = count = (size_t)status.st_size;
    } else if (ftruncate(file, (off_t)size) != 0) {
        return NULL;
    }
    void *there = mmap(NULL, size, how == MAP_SHARED ? PROT_READ | PROT_WRITE : PROT_READ, how, file, 0);
    close(file);
    return there == MAP_FAILED ? NULL : there;
}

static void trapped(int number, siginfo_t *info, void *context)
{
    (void)number;
    (void)info;
    greg_t *rip = &((ucontext_t *)context)->uc_mcontext.gregs[REG_RIP];
    const uintptr_t at = (uintptr_t)*rip - 1;
    size_t low = 0;
    for (size_t high = count; high - low > 1;) {
        const size_t middle = (low + high) / 2;
        *(offsets[middle] <= at - base ? &low : &high) = middle;
    }
    if (offsets[low] != at - base) {
        abort(); // somebody else's breakpoint
    }
    // Another thread may have been here meanwhile: then the same is done once more.
    *(volatile unsigned char *)at = originals[low];
    hits[low] = 1;
    *rip = (greg_t)at;
}

static int open_text(struct dl_phdr_info *info, size_t size, void *unused)
{
    (void)size;
    (void)unused;
    base = info->dlpi_addr; // the program itself comes first
    const uintptr_t page = (uintptr_t)sysconf(_SC_PAGESIZE) - 1;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr) *part = &info->dlpi_phdr[i];
        if (part->p_type == PT_LOAD && (part->p_flags & PF_X)) {
            const uintptr_t begin = (base + part->p_vaddr) & ~page;
            mprotect((void *)begin, base + part->p_vaddr + part->p_memsz - begin,
                     PROT_READ | PROT_WRITE | PROT_EXEC);
        }
    }
    return 1;
}

__attribute__((constructor)) static void watch(void)
{
    char program[4096];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
    if (length <= 0 || !getenv("LINEWATCH")) {
        return;
    }
    program[length] = '\0';
    const char *name = strrchr(program, '/') + 1;
    offsets = mapped(name, ".addresses", 0, MAP_PRIVATE);
    if (!offsets) {
        return;
    }
    count /= sizeof *offsets;
    hits = mapped(name, ".hits", count, MAP_SHARED);
    originals = malloc(count);
    if (!hits || !originals) {
        return;
    }
    dl_iterate_phdr(open_text, NULL);
    const struct sigaction action = { .sa_sigaction = trapped, .sa_flags = SA_SIGINFO | SA_RESTART | SA_NODEFER };
    sigaction(SIGTRAP, &action, NULL);
    for (size_t i = 0; i < count; ++i) {
        unsigned char *at = (unsigned char *)(base + offsets[i]);
        originals[i] = *at;
        *at = 0xCC; // int3
    }
}
