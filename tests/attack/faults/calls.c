/* Loaded before the C library: lets calls of the system fail, wherever in the process they come from, and counts them.
 *
 * The kernel hands the calls that can fail to a signal's handler (seccomp), which fails them or makes them by
 * syscall(), whose code the kernel lets through. What the process does before its libraries are ready is not seen. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <link.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>

#include "tests/attack/faults/plan.h"

typedef struct Call {
  long number;
  const char* kind;
} Call;

static const Call watched[] = {
    {SYS_openat, "open"},     {SYS_read, "read"},        {SYS_pread64, "read"}, {SYS_write, "write"},
    {SYS_renameat, "rename"}, {SYS_renameat2, "rename"}, {SYS_fsync, "sync"},   {SYS_fdatasync, "sync"},
    {SYS_close, "close"},     {SYS_mmap, "mmap"},        {SYS_linkat, "link"},  {SYS_ftruncate, "truncate"},
    {SYS_mkdirat, "mkdir"},   {SYS_getdents64, "list"},  {SYS_flock, "lock"},
#ifdef SYS_open
    {SYS_open, "open"},       {SYS_rename, "rename"},    {SYS_link, "link"},    {SYS_mkdir, "mkdir"},
#endif
};
enum { watchedCount = sizeof watched / sizeof watched[0] };

static Plan plan;
static int planned = -1; /* the first of `watched` that has the plan's kind */
static atomic_long counts[watchedCount], threads;

/* The kinds of several calls are counted together, at the first of them. */
static int placeOf(const char* kind) {
  for (int i = 0; i < watchedCount; ++i)
    if (strcmp(watched[i].kind, kind) == 0) return i;
  return -1;
}

static const char* kindOf(long number) {
  for (int i = 0; i < watchedCount; ++i)
    if (watched[i].number == number) return watched[i].kind;
  abort();
}

/* The sentence must be seen. */
static int isForReader(long number, long first) { return number == SYS_write && first == STDERR_FILENO; }

static long resultOf(long number, const long* a) {
  const int place = placeOf(kindOf(number));
  const long call = isForReader(number, a[0]) ? 0 : atomic_fetch_add(&counts[place], 1) + 1;
  const int fails = call > 0 && place == planned && isDue(&plan, call);
  if (fails && number != SYS_close) return -plan.error;
  const long result = syscall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
  if (fails) return -plan.error; /* the number is free again, as Linux leaves it */
  return result < 0 ? -errno : result;
}

static void handle(int signal, siginfo_t* info, void* context) {
  const int before = errno;
  (void)signal;
  mcontext_t* machine = &((ucontext_t*)context)->uc_mcontext;
#if defined __x86_64__
  const greg_t* r = machine->gregs;
  const long arguments[] = {r[REG_RDI], r[REG_RSI], r[REG_RDX], r[REG_R10], r[REG_R8], r[REG_R9]};
  machine->gregs[REG_RAX] = resultOf(info->si_syscall, arguments);
#else
  long arguments[6];
  for (int i = 0; i < 6; ++i) arguments[i] = (long)machine->regs[i];
  machine->regs[0] = (uint64_t)resultOf(info->si_syscall, arguments);
#endif
  errno = before;
}

#define LOAD(field) BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, field))
#define LOAD_HIGH(field) BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, field) + 4)
#define SKIP(condition, value, then, otherwise) BPF_JUMP(BPF_JMP | condition | BPF_K, (value), (then), (otherwise))
#define END(what) BPF_STMT(BPF_RET | BPF_K, what)

static void watch(uint64_t begin, uint64_t end) {
  struct sock_filter filter[6 + watchedCount + 2] = {LOAD_HIGH(instruction_pointer),
                                                     SKIP(BPF_JEQ, (uint32_t)(begin >> 32), 0, 3),
                                                     LOAD(instruction_pointer),
                                                     SKIP(BPF_JGE, (uint32_t)begin, 0, 1),
                                                     SKIP(BPF_JGT, (uint32_t)end, 0, watchedCount + 1),
                                                     LOAD(nr)};
  for (int i = 0; i < watchedCount; ++i)
    filter[6 + i] = (struct sock_filter)SKIP(BPF_JEQ, (uint32_t)watched[i].number, (uint8_t)(watchedCount - i), 0);
  filter[6 + watchedCount] = (struct sock_filter)END(SECCOMP_RET_ALLOW);
  filter[7 + watchedCount] = (struct sock_filter)END(SECCOMP_RET_TRAP);
  const struct sock_fprog program = {sizeof filter / sizeof filter[0], filter};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) abort();
}

__attribute__((constructor)) static void prepare(void) {
  Dl_info library;
  ElfW(Sym)* symbol = NULL;
  plan = readPlan();
  planned = placeOf(plan.kind);
  struct sigaction action = {.sa_sigaction = handle, .sa_flags = SA_SIGINFO | SA_NODEFER};
  void* const through = dlsym(RTLD_DEFAULT, "syscall");
  if (!dladdr1(through, &library, (void**)&symbol, RTLD_DL_SYMENT) || !symbol || sigaction(SIGSYS, &action, NULL))
    abort();
  watch((uint64_t)through, (uint64_t)through + symbol->st_size);
}

__attribute__((destructor)) static void count(void) {
  long found[watchedCount];
  for (int i = 0; i < watchedCount; ++i) found[i] = atomic_load(&counts[i]);
  for (int i = 0; i < watchedCount; ++i)
    if (found[i] > 0) writeCount(watched[i].kind, found[i]);
  writeCount("thread", atomic_load(&threads));
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*), void* argument) {
  typedef int Create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  if (strcmp(plan.kind, "thread") == 0 && isDue(&plan, atomic_fetch_add(&threads, 1) + 1)) return plan.error;
  if (plan.kind[0] == 0) atomic_fetch_add(&threads, 1);
  Create* const create = (Create*)(uintptr_t)dlsym(RTLD_NEXT, "pthread_create");
  return create(thread, attributes, work, argument);
}
