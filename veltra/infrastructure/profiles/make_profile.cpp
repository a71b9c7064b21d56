// SPDX-License-Identifier: MIT
// Writes VLGenericRGBProfile.icc, the profile of the framework's own RGB space, and the same bytes
// as a header. The space has the primaries and the white of sRGB (D65) and a gamma of 1.8.
//
//   make_profile VLGenericRGBProfile.icc generic_rgb_profile.h
//   make_profile --check VLGenericRGBProfile.icc generic_rgb_profile.h     compares instead
//
// The profile is of ICC version 4.3: version 2 has no room for the exact gamma. It is the same on
// every machine and on every day: its date is fixed, and its id is left out.
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;  // rows

constexpr double kGamma = 1.8;
constexpr std::array<Vector, 3> kPrimaries{
    {{0.64, 0.33, 0.03}, {0.30, 0.60, 0.10}, {0.15, 0.06, 0.79}}};
constexpr Vector kWhite{0.3127, 0.3290, 0.3583};
constexpr Vector kConnectionWhite{0.9642, 1.0, 0.8249};  // D50, that of every profile
// From XYZ to the answers of the eye's three kinds of cones, as Bradford's method has them.
constexpr Matrix kCones{
    {{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};

Vector operator*(const Matrix& matrix, const Vector& vector) {
    Vector result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            result[row] += matrix[row][column] * vector[column];
    return result;
}

Matrix transposed(const Matrix& matrix) {
    Matrix result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            result[column][row] = matrix[row][column];
    return result;
}

Matrix operator*(const Matrix& left, const Matrix& right) {
    Matrix columns{};
    for (std::size_t column = 0; column < 3; ++column)
        columns[column] = left * transposed(right)[column];
    return transposed(columns);
}

Matrix inverse(const Matrix& m) {
    Matrix result{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const std::size_t r1 = (column + 1) % 3;
            const std::size_t r2 = (column + 2) % 3;
            const std::size_t c1 = (row + 1) % 3;
            const std::size_t c2 = (row + 2) % 3;
            result[row][column] = m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
        }
    }
    const double determinant =
        m[0][0] * result[0][0] + m[0][1] * result[1][0] + m[0][2] * result[2][0];
    for (Vector& row : result)
        for (double& element : row)
            element /= determinant;
    return result;
}

Matrix diagonal(const Vector& vector) {
    return {{{vector[0], 0.0, 0.0}, {0.0, vector[1], 0.0}, {0.0, 0.0, vector[2]}}};
}

// What is seen in the white of this space, as it is seen in the white of every profile.
Matrix adaptation() {
    const Vector white{kWhite[0] / kWhite[1], 1.0, kWhite[2] / kWhite[1]};
    const Vector from = kCones * white;
    const Vector to = kCones * kConnectionWhite;
    return inverse(kCones) * diagonal({to[0] / from[0], to[1] / from[1], to[2] / from[2]}) * kCones;
}

// The columns are red, green and blue at full strength; together they are the white.
Matrix colorants() {
    const Matrix directions = transposed(kPrimaries);
    const Vector white{kWhite[0] / kWhite[1], 1.0, kWhite[2] / kWhite[1]};
    return adaptation() * directions * diagonal(inverse(directions) * white);
}

// All numbers of a profile are big-endian.
class Bytes {
public:
    void put16(std::uint32_t value) {
        put(value >> 8U);
        put(value);
    }
    void put32(std::uint32_t value) {
        put16(value >> 16U);
        put16(value);
    }
    void putFixed(double value) {  // 16 bits after the point
        put32(static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value * 65536.0))));
    }
    void putText(std::string_view text) { m_text += text; }
    void pad(std::size_t size) { m_text.resize(size, '\0'); }

    std::size_t size() const { return m_text.size(); }
    const std::string& text() const { return m_text; }

private:
    void put(std::uint32_t byte) { m_text += static_cast<char>(byte & 0xFFU); }

    std::string m_text;
};

// Each kind of tag begins with its name and four bytes of nothing.
Bytes tag(std::string_view kind) {
    Bytes bytes;
    bytes.putText(kind);
    bytes.put32(0);
    return bytes;
}

std::string text(std::string_view ascii) {
    constexpr std::uint32_t kStart = 28;  // of the text in the tag
    Bytes bytes = tag("mluc");
    bytes.put32(1);   // one language
    bytes.put32(12);  // the size of a record
    bytes.putText("enUS");
    bytes.put32(static_cast<std::uint32_t>(2 * ascii.size()));
    bytes.put32(kStart);
    for (const char letter : ascii)
        bytes.put16(static_cast<unsigned char>(letter));
    return bytes.text();
}

std::string point(const Vector& xyz) {
    Bytes bytes = tag("XYZ ");
    for (const double value : xyz)
        bytes.putFixed(value);
    return bytes.text();
}

std::string matrix(const Matrix& values) {
    Bytes bytes = tag("sf32");
    for (const Vector& row : values)
        for (const double value : row)
            bytes.putFixed(value);
    return bytes.text();
}

std::string curve() {
    Bytes bytes = tag("para");
    bytes.put32(0);  // function 0: a power
    bytes.putFixed(kGamma);
    return bytes.text();
}

std::string header(std::size_t size) {
    Bytes bytes;
    bytes.put32(static_cast<std::uint32_t>(size));
    bytes.put32(0);           // made for no module in particular
    bytes.put32(0x04300000);  // version 4.3
    bytes.putText("mntrRGB XYZ ");
    for (const std::uint32_t part : {2026U, 1U, 1U, 0U, 0U, 0U})  // to the second
        bytes.put16(part);
    bytes.putText("acsp");
    bytes.pad(68);  // no system, no flags, no device; the perceptual intent
    for (const double value : kConnectionWhite)
        bytes.putFixed(value);
    bytes.pad(128);  // no creator, no id
    return bytes.text();
}

std::string profile() {
    struct Tag {
        std::string_view name;
        std::string body;
    };
    const Matrix colors = transposed(colorants());
    const std::array<Tag, 10> tags{{
        {"desc", text("Veltra generic RGB, gamma 1.8")},
        {"cprt", text("Copyright 2026 the Veltra authors, MIT licence")},
        {"wtpt", point(kConnectionWhite)},
        {"chad", matrix(adaptation())},
        {"rXYZ", point(colors[0])},
        {"gXYZ", point(colors[1])},
        {"bXYZ", point(colors[2])},
        {"rTRC", curve()},
        {"gTRC", ""},  // as before
        {"bTRC", ""},
    }};
    constexpr std::size_t kHeader = 128;
    Bytes table;
    Bytes bodies;
    const std::size_t start = kHeader + 4 + 12 * tags.size();
    std::size_t offset = 0;
    std::size_t length = 0;
    table.put32(static_cast<std::uint32_t>(tags.size()));
    for (const Tag& each : tags) {
        if (!each.body.empty()) {
            offset = start + bodies.size();
            length = each.body.size();
            bodies.putText(each.body);
            bodies.pad((bodies.size() + 3) / 4 * 4);
        }
        table.putText(each.name);
        table.put32(static_cast<std::uint32_t>(offset));
        table.put32(static_cast<std::uint32_t>(length));
    }
    return header(start + bodies.size()) + table.text() + bodies.text();
}

std::string asHeader(const std::string& bytes) {
    constexpr std::size_t kInRow = 14;
    std::string result =
        "// SPDX-License-Identifier: MIT\n"
        "// VLGenericRGBProfile.icc, as make_profile.cpp wrote it.\n"
        "#pragma once\n\n#include <array>\n#include <cstdint>\n\nnamespace veltra {\n\n"
        "// clang-format off\n"
        "inline constexpr std::array<std::uint8_t, " +
        std::to_string(bytes.size()) + "> kGenericRgbProfile{{";
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(bytes[index]);
        result += index % kInRow == 0 ? "\n    0x" : " 0x";
        result += kDigits[byte >> 4U];
        result += kDigits[byte & 0xFU];
        result += ',';
    }
    return result + "\n}};\n// clang-format on\n\n}  // namespace veltra\n";
}

bool isInFile(const std::string& content, const char* name) {
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {}) == content;
}

bool isWritten(const std::string& content, const char* name) {
    std::ofstream file(name, std::ios::binary);
    file << content << std::flush;
    return file.good();
}

}  // namespace

int main(int argc, char** argv) {
    const bool isCheck = argc == 4 && std::string_view(argv[1]) == "--check";
    if (!isCheck && argc != 3) return 2;
    auto* const act = isCheck ? isInFile : isWritten;
    const std::string bytes = profile();
    bool isRight = true;
    for (const auto& [name, content] :
         {std::pair(argv[argc - 2], bytes), std::pair(argv[argc - 1], asHeader(bytes))}) {
        if (act(content, name)) continue;
        std::fprintf(stderr, isCheck ? "%s is not what is made now\n" : "%s: not written\n", name);
        isRight = false;
    }
    return isRight ? 0 : 1;
}
