// The system call table and the table of its names, expanded from one list.
#include "kernel/syscall_table.h"

#include "kernel/syscalls.h"

namespace tarn {
namespace {

template <typename Entry>
constexpr std::array<Entry, 256> filledWith(Entry entry) {
    std::array<Entry, 256> table{};
    table.fill(entry);
    return table;
}

constexpr std::array<SyscallHandler, 256> handlers = [] {
    auto table = filledWith<SyscallHandler>(SYSCALL_NI);
#define TARN_HANDLER(number, name) table[number] = SYSCALL_##name;
    TARN_SYSTEM_CALLS(TARN_HANDLER, TARN_HANDLER, TARN_HANDLER, TARN_HANDLER)
#undef TARN_HANDLER
    return table;
}();

constexpr std::array<const char*, 256> names = [] {
    auto table = filledWith<const char*>("SYSCALL_NI");
#define TARN_NAME(number, name) table[number] = "SYSCALL_" #name;
    TARN_SYSTEM_CALLS(TARN_NAME, TARN_NAME, TARN_NAME, TARN_NAME)
#undef TARN_NAME
    return table;
}();

}  // namespace

const std::array<SyscallHandler, 256> syscall_fct = handlers;
const std::array<const char*, 256> debug_syscall = names;

}  // namespace tarn
