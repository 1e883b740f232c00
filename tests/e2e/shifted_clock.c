// Preloaded into Wine's processes, its server included: the time of day is the machine's plus the seconds in the file
// that TIDELINK_SHIFTED_CLOCK names, a 64-bit number that may change at any time. Counters and intervals stay as they
// are.

#define _GNU_SOURCE
#include <fcntl.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

static const int64_t machine_time;
static volatile const int64_t* shift = &machine_time;

__attribute__((constructor)) static void find_shift(void)
{
    const char* const name = getenv("TIDELINK_SHIFTED_CLOCK");
    const int file = name ? open(name, O_RDWR | O_CREAT | O_CLOEXEC, 0600) : -1;
    if (file == -1 || ftruncate(file, sizeof *shift) != 0)
        return;
    void* const mapped = mmap(NULL, sizeof *shift, PROT_READ, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED)
        shift = mapped;
    close(file);
}

int clock_gettime(clockid_t clock, struct timespec* now)
{
    const int result = (int)syscall(SYS_clock_gettime, clock, now);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        now->tv_sec += *shift;
    return result;
}

int gettimeofday(struct timeval* restrict now, void* restrict zone)
{
    const int result = (int)syscall(SYS_gettimeofday, now, zone);
    if (result == 0)
        now->tv_sec += *shift;
    return result;
}

time_t time(time_t* result)
{
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    if (result)
        *result = now.tv_sec;
    return now.tv_sec;
}
