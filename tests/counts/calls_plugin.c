/* A plugin of qemu's user-mode emulators that counts the instructions of each call of the functions it is given.
 *
 *   qemu-arm -plugin calls_plugin.so,names=FILE,out=FILE[,trace=FUNCTION] PROGRAM
 *
 * `names` has a function's name a line. For each of them `out` gets "NAME CALLS INSTRUCTIONS": from the first
 * instruction of the function to its return, with everything that it calls. A call inside another counted call belongs
 * to that one. With `trace`, `out` instead gets the blocks that the first call of that function ran through, in order:
 * the address of the first instruction and how many.
 *
 * A call is entered where a block of instructions begins in a named function, and ends where the block behind the
 * calling instruction begins. So the program must be linked statically, and its calls must not be tail calls. */
#include <inttypes.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* What we need of qemu's plugin interface, version 1. Debian does not package its header. */
typedef uint64_t qemu_plugin_id_t;
typedef struct qemu_info_t qemu_info_t;
struct qemu_plugin_tb;
struct qemu_plugin_insn;
enum qemu_plugin_cb_flags { QEMU_PLUGIN_CB_NO_REGS };
typedef void (*translated_callback)(qemu_plugin_id_t id, struct qemu_plugin_tb* block);
typedef void (*executed_callback)(unsigned cpu, void* data);
typedef void (*exit_callback)(qemu_plugin_id_t id, void* data);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, translated_callback callback);
void qemu_plugin_register_vcpu_tb_exec_cb(struct qemu_plugin_tb* block, executed_callback callback,
                                          enum qemu_plugin_cb_flags flags, void* data);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, exit_callback callback, void* data);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb* block, size_t index);
const char* qemu_plugin_insn_symbol(const struct qemu_plugin_insn* instruction);
uint64_t qemu_plugin_insn_vaddr(const struct qemu_plugin_insn* instruction);
size_t qemu_plugin_insn_size(const struct qemu_plugin_insn* instruction);

__attribute__((visibility("default"))) int qemu_plugin_version = 1;

typedef struct {
  char name[64];
  uint64_t calls, instructions;
} Function;

typedef struct {
  uint64_t start, end, instructions;
  Function* function; /* the counted function that it begins in */
} Block;

static Function functions[1024];
static size_t functionCount;
static const char *traced = "", *outName;
static FILE* out;

static Function* current;                   /* whose call is being counted */
static uint64_t returnTo;                   /* where that call ends */
static uint64_t previousEnd = ~UINT64_C(0); /* of the block executed last */

static Function* functionNamed(const char* name) {
  for (size_t i = 0; name && i < functionCount; ++i) {
    if (strcmp(functions[i].name, name) == 0) return &functions[i];
  }
  return NULL;
}

static bool isTraced(const Function* function) { return function->calls == 1 && strcmp(function->name, traced) == 0; }

static void executed(unsigned cpu, void* data) {
  const Block* block = data;
  (void)cpu;
  if (current && block->start == returnTo) current = NULL;
  if (!current && block->function) {
    current = block->function;
    returnTo = previousEnd;
    ++current->calls;
  }
  if (current) {
    current->instructions += block->instructions;
    if (isTraced(current)) fprintf(out, "%" PRIx64 " %" PRIu64 "\n", block->start, block->instructions);
  }
  previousEnd = block->end;
}

static void translated(qemu_plugin_id_t id, struct qemu_plugin_tb* tb) {
  const size_t count = qemu_plugin_tb_n_insns(tb);
  const struct qemu_plugin_insn *first = qemu_plugin_tb_get_insn(tb, 0), *last = qemu_plugin_tb_get_insn(tb, count - 1);
  Block* block = malloc(sizeof *block); /* lives as long as the emulator */
  (void)id;
  if (!block) abort();
  *block = (Block){qemu_plugin_insn_vaddr(first), qemu_plugin_insn_vaddr(last) + qemu_plugin_insn_size(last), count,
                   functionNamed(qemu_plugin_insn_symbol(first))};
  qemu_plugin_register_vcpu_tb_exec_cb(tb, executed, QEMU_PLUGIN_CB_NO_REGS, block);
}

/* A call that did not return would make every count behind it wrong: the table then ends with a line that says so. */
static void finished(qemu_plugin_id_t id, void* data) {
  (void)id;
  (void)data;
  for (size_t i = 0; !*traced && i < functionCount; ++i) {
    fprintf(out, "%s %" PRIu64 " %" PRIu64 "\n", functions[i].name, functions[i].calls, functions[i].instructions);
  }
  if (current) fprintf(out, "%s did not return\n", current->name);
  fclose(out);
}

static bool readNames(const char* path) {
  FILE* file = fopen(path, "r");
  if (!file) return false;
  while (functionCount < sizeof functions / sizeof *functions &&
         fscanf(file, "%63s", functions[functionCount].name) == 1) {
    ++functionCount;
  }
  fclose(file);
  return functionCount > 0;
}

__attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id, const qemu_info_t* info, int argc,
                                                               char** argv) {
  const char* names = "";
  (void)info;
  for (int i = 0; i < argc; ++i) {
    if (strncmp(argv[i], "names=", 6) == 0) names = argv[i] + 6;
    if (strncmp(argv[i], "out=", 4) == 0) outName = argv[i] + 4;
    if (strncmp(argv[i], "trace=", 6) == 0) traced = strdup(argv[i] + 6);
  }
  out = outName ? fopen(outName, "w") : NULL;
  if (!out || !readNames(names)) {
    fprintf(stderr, "calls_plugin: needs names=FILE and out=FILE\n");
    return 1;
  }
  qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
  qemu_plugin_register_atexit_cb(id, finished, NULL);
  return 0;
}
