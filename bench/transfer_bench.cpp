// Image transfer benchmarks: an upload through the GIF, and a move within local memory.
#include "bench_machine.h"
#include "gif_packet.h"

#include <benchmark/benchmark.h>

namespace tarn::bench {

namespace {

constexpr u32 width = 640, height = 448;
constexpr u32 packetAddress = 0x00200000;
constexpr u32 maximumLoops = 0x7FFF;

/// The buffers, the rectangle and the direction of a transfer.
void start(GifPacket& packet, u64 format, u64 direction) {
    using namespace gs_register;
    const u64 rowOfFrames = width / 64;
    packet.set(BITBLTBUF,
               rowOfFrames << 16 | rowOfFrames << 48 | u64{width * height / 64} << 32 | format << 56);
    packet.set(TRXPOS, 0);
    packet.set(TRXREG, width | u64{height} << 32);
    packet.set(TRXDIR, direction);
}

void upload(benchmark::State& state) {
    startMachine();
    GifPacket packet(packetAddress);
    start(packet, 0, 0);
    for (u32 left = width * height / 4; left > 0;) {
        const u32 loops = std::min(left, maximumLoops);
        packet.imageTag(loops);
        for (u32 i = 0; i < loops; ++i) {
            packet.quadword(i, left);
        }
        left -= loops;
    }
    for (auto _ : state) {
        packet.send();
    }
    state.SetBytesProcessed(state.iterations() * width * height * 4);
}
BENCHMARK(upload)->Name("transfer/upload32/640x448");

void upload24(benchmark::State& state) {
    startMachine();
    GifPacket packet(packetAddress);
    start(packet, 1, 0);
    const u32 groups = width * height / 16;
    packet.imageTag(groups);
    for (u32 i = 0; i < groups * 3; ++i) {
        packet.quadword(i, ~i);
    }
    for (auto _ : state) {
        packet.send();
    }
    state.SetBytesProcessed(state.iterations() * width * height * 4);
}
BENCHMARK(upload24)->Name("transfer/upload24/640x448");

void localMove(benchmark::State& state) {
    startMachine();
    GifPacket packet(packetAddress);
    start(packet, 0, 2);
    for (auto _ : state) {
        packet.send();
    }
    state.SetBytesProcessed(state.iterations() * width * height * 4);
}
BENCHMARK(localMove)->Name("transfer/move/640x448");

}  // namespace

}  // namespace tarn::bench
