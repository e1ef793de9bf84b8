// What the measurements are compared with: the C library, SDL and pixman at comparable work.
#include "base/types.h"

#include <SDL.h>
#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>
#include <pixman.h>
#include <vector>

namespace tarn::bench {

namespace {

constexpr int width = 640, height = 448, windowWidth = 800, windowHeight = 600, textureSize = 256;
constexpr std::size_t pictureBytes = std::size_t{width} * height * 4;

void setMemory(benchmark::State& state) {
    std::vector<u8> destination(pictureBytes);
    int value = 0;
    for (auto _ : state) {
        std::memset(destination.data(), ++value, pictureBytes);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}
BENCHMARK(setMemory)->Name("reference/memset/640x448");

void copyMemory(benchmark::State& state) {
    std::vector<u8> source(pictureBytes, 1), destination(pictureBytes);
    for (auto _ : state) {
        std::memcpy(destination.data(), source.data(), pictureBytes);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}
BENCHMARK(copyMemory)->Name("reference/memcpy/640x448");

using Surface = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

Surface opaqueSurface(int w, int h) {
    return {SDL_CreateRGBSurface(SDL_SWSURFACE, w, h, 32, 0x00FF0000, 0x0000FF00, 0x000000FF, 0),
            SDL_FreeSurface};
}

void fillRectangle(benchmark::State& state) {
    const Surface surface = opaqueSurface(width, height);
    u32 colour = 0;
    for (auto _ : state) {
        SDL_FillRect(surface.get(), nullptr, ++colour);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}
BENCHMARK(fillRectangle)->Name("reference/SDL_FillRect/640x448");

void blitSurface(benchmark::State& state) {
    const Surface source = opaqueSurface(windowWidth, windowHeight);
    const Surface destination = opaqueSurface(windowWidth, windowHeight);
    for (auto _ : state) {
        SDL_UpperBlit(source.get(), nullptr, destination.get(), nullptr);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * windowWidth * windowHeight);
}
BENCHMARK(blitSurface)->Name("reference/SDL_UpperBlit/800x600");

/// A texture stretched to the screen, nearest pixel.
void pixmanNearest(benchmark::State& state) {
    std::vector<u32> texture(textureSize * textureSize, 0x00804020), screen(std::size_t{width} * height);
    pixman_image_t* source =
        pixman_image_create_bits(PIXMAN_x8r8g8b8, textureSize, textureSize, texture.data(), textureSize * 4);
    pixman_image_t* destination =
        pixman_image_create_bits(PIXMAN_x8r8g8b8, width, height, screen.data(), width * 4);
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, pixman_double_to_fixed(double{textureSize} / width),
                                pixman_double_to_fixed(double{textureSize} / height));
    pixman_image_set_transform(source, &transform);
    pixman_image_set_filter(source, PIXMAN_FILTER_NEAREST, nullptr, 0);
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, destination, 0, 0, 0, 0, 0, 0, width,
                                 height);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
    pixman_image_unref(source);
    pixman_image_unref(destination);
}
BENCHMARK(pixmanNearest)->Name("reference/pixman_nearest/256x256_to_640x448");

}  // namespace

}  // namespace tarn::bench
