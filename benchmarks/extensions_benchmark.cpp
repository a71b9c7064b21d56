// SPDX-License-Identifier: MIT
// Compression beside zlib called directly, and beside libdeflate, which makes other bytes and needs
// the unpacked size; the checks of texts.
#include "benchmarks/ratios.h"
#include "veltra/Source/Extensions/QKNSData_Extensions.h"
#include "veltra/Source/Extensions/QKNSString_URLs.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#include <libdeflate.h>
#include <zlib.h>

namespace {

using Data = veltra::PropertyValue::Data;

constexpr std::size_t kSize = std::size_t{4} << 20;

Data wordsOfText() {
    constexpr std::string_view kWords[] = {"take ", "the ",   "second ",  "oscillator ", "a ",
                                           "few ",  "cents ", "down ",    "and ",        "listen ",
                                           "to ",   "what\n", "changes ", "in ",         "it "};
    Data data;
    std::uint32_t seed = 1;
    while (data.size() < kSize) {
        seed = seed * 1664525 + 1013904223;
        const std::string_view word = kWords[(seed >> 16U) % std::size(kWords)];
        data.insert(data.end(), word.begin(), word.end());
    }
    data.resize(kSize);
    return data;
}

Data audio16() {
    Data data(kSize);
    std::uint32_t seed = 1;
    for (std::size_t index = 0; index + 1 < kSize; index += 2) {
        seed = seed * 1664525 + 1013904223;
        const double sample =
            8000.0 * std::sin(static_cast<double>(index) * 0.01) + static_cast<double>(seed >> 24U);
        const auto value = static_cast<std::int16_t>(sample);
        data[index] = static_cast<std::uint8_t>(value & 0xFF);
        data[index + 1] = static_cast<std::uint8_t>((value >> 8) & 0xFF);
    }
    return data;
}

Data directlyCompressed(const Data& data) {
    uLongf length = compressBound(data.size());
    Data stream(length);
    if (compress(stream.data(), &length, data.data(), data.size()) != Z_OK) return {};
    stream.resize(length);
    return stream;
}

void compressOurs(benchmark::State& state, const Data& data) {
    for (auto _ : state)
        benchmark::DoNotOptimize(veltra::compressedData(data));
}

void compressZlib(benchmark::State& state, const Data& data) {
    for (auto _ : state)
        benchmark::DoNotOptimize(directlyCompressed(data));
}

void compressLibdeflate(benchmark::State& state, const Data& data) {
    libdeflate_compressor* const compressor = libdeflate_alloc_compressor(6);
    for (auto _ : state) {
        Data stream(libdeflate_zlib_compress_bound(compressor, data.size()));
        stream.resize(libdeflate_zlib_compress(compressor, data.data(), data.size(), stream.data(),
                                               stream.size()));
        benchmark::DoNotOptimize(stream.data());
    }
    libdeflate_free_compressor(compressor);
}

void inflateOurs(benchmark::State& state, const Data& data) {
    const Data stream = directlyCompressed(data);
    for (auto _ : state)
        benchmark::DoNotOptimize(veltra::decompressedData(stream));
}

void inflateZlib(benchmark::State& state, const Data& data) {
    const Data stream = directlyCompressed(data);
    for (auto _ : state) {
        Data unpacked(data.size());
        uLongf length = unpacked.size();
        uncompress(unpacked.data(), &length, stream.data(), stream.size());
        benchmark::DoNotOptimize(unpacked.data());
    }
}

void inflateLibdeflate(benchmark::State& state, const Data& data) {
    const Data stream = directlyCompressed(data);
    libdeflate_decompressor* const decompressor = libdeflate_alloc_decompressor();
    for (auto _ : state) {
        Data unpacked(data.size());
        libdeflate_zlib_decompress(decompressor, stream.data(), stream.size(), unpacked.data(),
                                   unpacked.size(), nullptr);
        benchmark::DoNotOptimize(unpacked.data());
    }
    libdeflate_free_decompressor(decompressor);
}

void checkEmailAddress(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(
            veltra::stringLooksLikeValidEmailAddress("first.last@example.com"));
}

void checkUri(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(veltra::stringLooksLikeValidURI("http://example.com/a/b?c=d#e"));
}

// The pattern backtracks in it without end, unless it is stopped.
void refuseHostileAddress(benchmark::State& state) {
    std::string address = "a@";
    for (int count = 0; count < 500; ++count)
        address += "a.";
    address += '!';
    for (auto _ : state)
        benchmark::DoNotOptimize(veltra::stringLooksLikeValidEmailAddress(address));
}

// What a user who types an address does not notice.
void fiftyMilliseconds(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(0.05);
}

constexpr Ratio kChecks[] = {
    {"hostile e-mail address : 50 ms", "hostile email address", "fiftyMilliseconds", 1.0},
    {"e-mail address : URI, for the record", "email address", "URI", 0},
};

}  // namespace

BENCHMARK(fiftyMilliseconds)->UseManualTime()->Iterations(10);

int main(int argc, char** argv) {
    RatioList list;
    static const Data kText = wordsOfText();
    static const Data kAudio = audio16();
    static const Data kZeros(kSize);
    const struct {
        const char* name;
        const Data& data;
    } kInputs[] = {{"text", kText}, {"audio", kAudio}, {"zeros", kZeros}};
    using Work = void (*)(benchmark::State&, const Data&);
    const auto add = [&list](const std::string& name, Work work, const Data& data) {
        return list.add(name, [work, &data](benchmark::State& state) { work(state, data); });
    };
    for (const auto& input : kInputs) {
        const std::string name = input.name;
        const char* const ours = add("compress " + name, compressOurs, input.data);
        list.compare(ours, add("zlib compress " + name, compressZlib, input.data), 1.05);
        list.compare(ours, add("libdeflate compress " + name, compressLibdeflate, input.data), 0);
        const char* const inflated = add("inflate " + name, inflateOurs, input.data);
        list.compare(inflated, add("zlib inflate " + name, inflateZlib, input.data), 1.05);
        list.compare(inflated, add("libdeflate inflate " + name, inflateLibdeflate, input.data), 0);
    }
    list.add("email address", checkEmailAddress);
    list.add("URI", checkUri);
    list.add("hostile email address", refuseHostileAddress);
    list.append(kChecks);
    return list.run(argc, argv);
}
