// SPDX-License-Identifier: MIT
#include "file_format.h"

#include "container_check.h"
#include "veltra/processor/sample_conversion.h"

#include <array>
#include <bit>
#include <vector>

namespace veltra::console {

namespace {

struct Encoding {
    int subtype;
    const char* name;
    int bits;
    std::int32_t converterFormat;
    std::uint32_t bytes;
};

// clang-format off
constexpr std::array<Encoding, 7> kEncodings{{
    // subtype          name                      bits  converter     bytes
    {SF_FORMAT_PCM_S8, "8-bit signed integer",       8, kSampleInt8,    1},
    {SF_FORMAT_PCM_U8, "8-bit unsigned integer",     8, kSampleInt8,    1},
    {SF_FORMAT_PCM_16, "16-bit integer",            16, kSampleInt16,   2},
    {SF_FORMAT_PCM_24, "24-bit integer",            24, kSampleInt24,   3},
    {SF_FORMAT_PCM_32, "32-bit integer",            32, kSampleInt32,   4},
    {SF_FORMAT_FLOAT,  "32-bit float",              32, kSampleFloat32, 4},
    {SF_FORMAT_DOUBLE, "64-bit float",              64, kSampleFloat64, 8},
}};
// clang-format on

// The containers whose sample data are plain interleaved frames.
constexpr std::array<int, 10> kPlainContainers{
    SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64,  SF_FORMAT_W64, SF_FORMAT_AIFF,
    SF_FORMAT_AU,  SF_FORMAT_CAF,   SF_FORMAT_IRCAM, SF_FORMAT_AVR, SF_FORMAT_NIST};

bool isPlain(int container) {
    for (const int plain : kPlainContainers) {
        if (container == plain) return true;
    }
    return false;
}

// Those whose bytes are no samples, though libsndfile calls what comes of them "16 bit".
bool hasSamples(int container, int subtype) {
    return container != SF_FORMAT_FLAC && container != SF_FORMAT_SDS &&
           !(container == SF_FORMAT_PAF && subtype == SF_FORMAT_PCM_24);
}

// The largest value of each encoding, where that is below the one of 16 bits.
float fullScaleOf(int subtype, int bits) {
    switch (subtype) {
        case SF_FORMAT_ULAW:
            return 32124.0F / 32768.0F;
        case SF_FORMAT_ALAW:
            return 32256.0F / 32768.0F;
        case SF_FORMAT_DPCM_8:
            return fullScaleMagnitude(8);
        case SF_FORMAT_DWVW_12:
            return fullScaleMagnitude(12);
        case SF_FORMAT_GSM610:
            return fullScaleMagnitude(13);
        case SF_FORMAT_G721_32:
        case SF_FORMAT_G723_24:
        case SF_FORMAT_G723_40:
            return fullScaleMagnitude(14);
        default:
            return fullScaleMagnitude(bits);
    }
}

std::string libraryName(SNDFILE* file, int format) {
    SF_FORMAT_INFO info{};
    info.format = format;
    if (sf_command(file, SFC_GET_FORMAT_INFO, &info, sizeof info) != 0) return "unknown";
    const std::string name = info.name != nullptr ? info.name : "unknown";
    return name.substr(0, name.find(" ("));  // "WAV (Microsoft)" is a WAV to everybody
}

}  // namespace

FileFormat describe(SNDFILE* file, const SF_INFO& info, const std::string& path) {
    const int container = info.format & SF_FORMAT_TYPEMASK;
    const int subtype = info.format & SF_FORMAT_SUBMASK;
    const ContainerCheck check = checkContainer(path);

    FileFormat format;
    format.container = check.compressedAiff          ? "AIFF-C"
                       : container == SF_FORMAT_NIST ? "SPHERE"
                                                     : libraryName(file, container);
    format.encoding = libraryName(file, subtype);
    format.rate = info.samplerate;
    format.channels = info.channels;
    std::vector<int> positions(static_cast<std::size_t>(info.channels));
    const auto bytes = static_cast<int>(positions.size() * sizeof(int));
    if (sf_command(file, SFC_GET_CHANNEL_MAP_INFO, positions.data(), bytes) != SF_TRUE) {
        positions.assign(positions.size(), SF_CHANNEL_MAP_INVALID);
    }
    format.plan = channelPlan(positions);
    format.lengthUnknown = info.frames == SF_COUNT_MAX;
    if (info.frames > 0 && !format.lengthUnknown) {
        format.frames = static_cast<std::uint64_t>(info.frames);
    }
    format.missingBytes = check.missingBytes;
    // A FLAC encoder that writes into a pipe cannot go back to tell how many there were.
    const bool isOpenFlac = format.lengthUnknown && container == SF_FORMAT_FLAC;
    format.endIsMissing = check.endIsMissing || (format.lengthUnknown && !isOpenFlac);
    format.openLength = check.openLength || isOpenFlac;

    for (const Encoding& encoding : kEncodings) {
        if (encoding.subtype != subtype) continue;
        format.encoding = encoding.name;
        format.bits = encoding.bits;
        if (!hasSamples(container, subtype)) break;

        // libsndfile tells whether the data are of the other order than this machine's.
        const bool foreign = sf_command(file, SFC_RAW_DATA_NEEDS_ENDSWAP, nullptr, 0) == SF_TRUE;
        const bool little = foreign != (std::endian::native == std::endian::little);
        const bool oneByte = encoding.bytes == 1;
        const bool isFloat = encoding.converterFormat < 0;
        format.byteOrder = oneByte ? ByteOrder::None : little ? ByteOrder::Little : ByteOrder::Big;
        if (!isPlain(container)) break;
        format.layout.converterFormat = encoding.converterFormat;
        format.layout.bytes = encoding.bytes;
        format.layout.swapped = oneByte ? subtype == SF_FORMAT_PCM_U8 : !isFloat && little;
        format.layout.foreignFloat = isFloat && foreign;
        break;
    }
    format.fullScale = fullScaleOf(subtype, format.bits);
    return format;
}

}  // namespace veltra::console
