// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSData_Extensions.h"

#include "veltra/Source/Extensions/QKNSDictionary_Extensions.h"
#include "veltra/Source/Extensions/detail/inflated_data.h"
#include "veltra/base/testing/in_force.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/compression.h"
#include "veltra/platform/testing/fake_user.h"

namespace veltra {
namespace {

using Data = PropertyValue::Data;

#ifdef VELTRA_ZLIB
#define SKIP_WITHOUT_ZLIB() static_cast<void>(0)
#else
#define SKIP_WITHOUT_ZLIB() GTEST_SKIP() << "built without zlib"
#endif

constexpr std::size_t kMiB = std::size_t{1} << 20;

// `bits` random bits in each byte.
Data randomData(std::size_t size, unsigned bits) {
    Data data(size);
    std::mt19937_64 random(size);
    const std::uint64_t mask = ((1U << bits) - 1) * 0x0101010101010101U;
    for (std::size_t place = 0; place < size; place += sizeof(std::uint64_t)) {
        const std::uint64_t word = random() & mask;
        std::memcpy(data.data() + place, &word, std::min(sizeof word, size - place));
    }
    return data;
}

TEST(CompressedData, IsOnePlainStreamThatUnpacksToWhatItWas) {
    SKIP_WITHOUT_ZLIB();
    Data cases[] = {Data(1),
                    randomData(19, 8),
                    randomData(70'001, 8),
                    randomData(2 * kMiB, 4),
                    Data(64 * kMiB, 'x'),
                    randomData(64 * kMiB, 8),
                    Data(kMiB),
                    Data(kMiB)};
    // The start says nothing about the rest.
    const std::span zerosFirst(cases[6]), zerosLast(cases[7]);
    std::ranges::copy(cases[2], zerosFirst.last(cases[2].size()).begin());
    std::ranges::copy(cases[2], zerosLast.begin());
    for (const Data& data : cases) {
        const Data stream = compressedData(data).value();
        EXPECT_TRUE(stream[0] == 0x78 && stream[1] == 0x9C);
        EXPECT_EQ(stream.capacity(), stream.size());
        const std::optional<Data> unpacked = decompressedData(stream);
        ASSERT_TRUE(unpacked == data) << data.size();
        EXPECT_LE(unpacked->capacity(), data.size() + data.size() / 4);
    }
    EXPECT_EQ(compressedData({}), std::nullopt);
    EXPECT_EQ(decompressedData({}), std::nullopt);
    const Data ofNothing = {0x78, 0x9C, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01};
    EXPECT_EQ(decompressedData(ofNothing), Data());
    EXPECT_EQ(decompressedData(ofNothing, 0), Data());
}

TEST(CompressedData, ThatIsDamagedOrCutShortIsNothing) {
    SKIP_WITHOUT_ZLIB();
    for (const unsigned bits : {4U, 6U, 8U}) {
        const Data data = randomData(300, bits);
        Data stream = compressedData(data).value();
        for (std::size_t length = 0; length < stream.size(); ++length)
            ASSERT_EQ(decompressedData(std::span(stream).first(length)), std::nullopt) << length;
        for (std::size_t bit = 0; bit < stream.size() * 8; ++bit) {
            stream[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
            const std::optional<Data> unpacked = decompressedData(stream);
            ASSERT_TRUE(!unpacked || *unpacked == data) << bit;  // a bit may mean nothing
            stream[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
        }
        stream.insert(stream.end(), {1, 2, 3});
        ASSERT_EQ(decompressedData(stream), data);
    }
}

TEST(CompressedData, UnpacksAlikeInPiecesAndUpToALimit) {
    SKIP_WITHOUT_ZLIB();
    for (const Data& data : {Data(5000), randomData(5000, 8), randomData(5000, 3)}) {
        const Data stream = compressedData(data).value();
        for (const std::size_t piece : {1U, 7U, 4096U}) {
            EXPECT_EQ(detail::inflatedData(stream, data.size(), piece), data);
            EXPECT_EQ(detail::inflatedData(stream, data.size() - 1, piece), std::nullopt);
            EXPECT_EQ(detail::inflatedData(stream, 0, piece), std::nullopt);
        }
    }
}

// Compresses nothing; what it unpacks never ends.
struct EndlessCompression final : testing::InForce<Compression> {
    std::size_t largestCompressedSize(std::size_t size) const noexcept override { return size; }
    std::optional<std::size_t> compress(std::span<const std::uint8_t>,
                                        std::span<std::uint8_t> room) const noexcept override {
        roomForStream = room.size();
        return std::nullopt;
    }
    std::unique_ptr<Inflater> makeInflater() const noexcept override {
        struct Endless final : Inflater {
            explicit Endless(std::size_t& sum) : made(sum) {}
            Step inflate(std::span<const std::uint8_t>,
                         std::span<std::uint8_t> destination) noexcept override {
                made += destination.size();
                return {State::More, 0, destination.size()};
            }
            std::size_t& made;
        };
        return std::make_unique<Endless>(made);
    }

    mutable std::size_t roomForStream = 0, made = 0;
};

TEST(CompressedData, OfABombTakesNoMoreThanTheLimitAndThatCannotBeMadeIsAnAssertion) {
    const EndlessCompression endless;
    EXPECT_EQ(decompressedData(Data(1000), kMiB), std::nullopt);
    EXPECT_EQ(endless.made, kMiB + 1);

    LogWorld world;
    testing::FakeUser user;
    user.answer = AlertAnswer::Default;
    EXPECT_EQ(compressedData(Data(8192)), std::nullopt);
    EXPECT_EQ(endless.roomForStream, 8212U);
    EXPECT_NE(user.text.find("|ASSERT(-compressedData error) in "
                             "Source/Extensions/QKNSData_Extensions:36 failed.\n|"),
              user.text.npos);
    EXPECT_EQ(world.records.size(), 1U);
}

TEST(Dictionary, IsReadFromData) {
    const auto read = [](std::string_view text) {
        return initWithData({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    };
    const auto dictionary = read(R"({"name": "Take", "blob": {"$data": "AQI="}})");
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->at("name"), PropertyValue("Take"));
    EXPECT_EQ(dictionary->at("blob"), PropertyValue(Data{1, 2}));
    for (const char* text : {"", "[]", "{", "{\"a\": \"\xFF\"}"})
        EXPECT_EQ(read(text), std::nullopt) << text;
}

}  // namespace
}  // namespace veltra
