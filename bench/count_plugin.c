/* count_plugin.c: a QEMU plugin that counts the guest's instructions where the guest can read the count.
 *
 *     qemu-aarch64 -plugin count_plugin.so,counter=FILE PROGRAM
 *
 * FILE holds one 64-bit number; the program maps it and looks at it before and after what it measures.
 * Whole translation blocks are counted as they are entered, which is exact except for the one that the
 * look itself lies in: that error is the same each time and goes with an empty measurement.
 *
 * Debian's QEMU takes plugins but no package has their header; these are the declarations of version 1 of
 * the interface, which QEMU documents as stable. */
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#define EXPORTED __attribute__((visibility("default")))

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
struct qemu_info_t;
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };

typedef void (*qemu_plugin_vcpu_tb_trans_cb_t)(qemu_plugin_id_t id, struct qemu_plugin_tb* tb);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, qemu_plugin_vcpu_tb_trans_cb_t callback);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* tb, enum qemu_plugin_op op, void* ptr,
                                              uint64_t imm);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* tb);

EXPORTED extern int qemu_plugin_version;
int qemu_plugin_version = 1;
EXPORTED int qemu_plugin_install(qemu_plugin_id_t id, const struct qemu_info_t* info, int argc, char** argv);

static uint64_t* counter;

static void on_translation(qemu_plugin_id_t id, struct qemu_plugin_tb* tb) {
  (void)id;
  qemu_plugin_register_vcpu_tb_exec_inline(tb, QEMU_PLUGIN_INLINE_ADD_U64, counter,
                                           qemu_plugin_tb_n_insns(tb));
}

int qemu_plugin_install(qemu_plugin_id_t id, const struct qemu_info_t* info, int argc, char** argv) {
  static const char key[] = "counter=";
  (void)info;
  if (argc != 1 || strncmp(argv[0], key, strlen(key)) != 0) {
    fprintf(stderr, "count_plugin: counter=FILE is missing\n");
    return -1;
  }
  const char* path = argv[0] + strlen(key);
  const int file = open(path, O_RDWR | O_CREAT, 0600);
  if (file < 0 || ftruncate(file, sizeof *counter) != 0) {
    perror(path);
    return -1;
  }
  void* mapped = mmap(NULL, sizeof *counter, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  if (mapped == MAP_FAILED) {
    perror(path);
    return -1;
  }
  counter = mapped;
  qemu_plugin_register_vcpu_tb_trans_cb(id, on_translation);
  return 0;
}
