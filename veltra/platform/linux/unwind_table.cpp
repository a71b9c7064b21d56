// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/unwind_table.h"

#include <array>

namespace veltra {

namespace {

// As DWARF and the processor's ABI number them.
#if defined(__aarch64__)
constexpr bool kSignsReturnAddresses = true;
constexpr std::uint64_t kFramePointer = 29;
constexpr std::uint64_t kReturnAddress = 30;
constexpr std::uint64_t kStackPointer = 31;
#else
constexpr bool kSignsReturnAddresses = false;
constexpr std::uint64_t kFramePointer = 6;
constexpr std::uint64_t kStackPointer = 7;
constexpr std::uint64_t kReturnAddress = 16;
#endif
constexpr unsigned char kRelativeWord = 0x1B;  // four signed bytes, relative to their own address
constexpr std::uint8_t kPlusBaseRegister =
    0x70;                               // expression: a register, by its number, and an offset
constexpr std::uint8_t kLookUp = 0x06;  // expression: what lies at that address

// Instructions with an operand in their lower six bits are told by the upper two.
enum class ShortInstruction : std::uint8_t {
    Advance = 0x40,
    Offset = 0x80,
    Restore = 0xC0,
};

enum class Instruction : std::uint8_t {
    Nothing = 0x00,
    Advance1 = 0x02,  // by 1, 2 or 4 bytes of units
    Advance2 = 0x03,
    Advance4 = 0x04,
    Offset = 0x05,
    Restore = 0x06,
    Undefined = 0x07,
    SameValue = 0x08,
    RememberState = 0x0A,
    RestoreState = 0x0B,
    DefineCfa = 0x0C,
    DefineCfaRegister = 0x0D,
    DefineCfaOffset = 0x0E,
    DefineCfaExpression = 0x0F,
    Expression = 0x10,
    SignReturnAddress = 0x2D,  // or take the signature back; of 64-bit ARM alone
    ArgumentsSize = 0x2E,
};

template <typename T>
T readAt(const unsigned char* bytes) noexcept {
    T value{};
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Reads one after another; past the end it reads zeros and says so.
class Reader {
public:
    Reader(const unsigned char* begin, const unsigned char* end) noexcept
        : m_at(begin), m_end(end) {}

    template <typename T>
    T read() noexcept {
        if (!has(sizeof(T))) return T{};
        const T value = readAt<T>(m_at);
        m_at += sizeof(T);
        return value;
    }

    std::uint64_t readUnsigned() noexcept {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const auto byte = read<std::uint8_t>();
            if (shift < 64) value |= std::uint64_t{byte & 0x7FU} << shift;
            if ((byte & 0x80U) == 0) return value;
        }
    }

    std::int64_t readSigned() noexcept {
        std::uint64_t value = 0;
        unsigned shift = 0;
        std::uint8_t byte = 0;
        do {
            byte = read<std::uint8_t>();
            if (shift < 64) value |= std::uint64_t{byte & 0x7FU} << shift;
            shift += 7;
        } while ((byte & 0x80U) != 0);
        if (shift < 64 && (byte & 0x40U) != 0) value |= ~std::uint64_t{0} << shift;
        return static_cast<std::int64_t>(value);
    }

    Reader take(std::uint64_t size) noexcept {
        if (!has(size)) size = 0;
        const Reader part(m_at, m_at + size);
        m_at += size;
        return part;
    }

    bool isAtEnd() const noexcept { return m_at == m_end; }
    bool isSound() const noexcept { return m_isSound; }
    const unsigned char* at() const noexcept { return m_at; }

private:
    bool has(std::uint64_t size) noexcept {
        if (static_cast<std::uint64_t>(m_end - m_at) >= size) return true;
        m_at = m_end;
        return m_isSound = false;
    }

    const unsigned char* m_at;
    const unsigned char* m_end;
    bool m_isSound = true;
};

// What all descriptions of one compiler have in common.
struct CommonPart {
    std::uint64_t codeUnit = 0;
    std::int64_t dataUnit = 0;
    Reader program{nullptr, nullptr};
    bool isUsable = false;
};

std::size_t sizeOfEncoded(unsigned char encoding) noexcept {
    constexpr std::array<std::uint8_t, 8> kSizes{8, 0, 2, 4, 8, 0, 0, 0};
    return (encoding & 0x70) == 0x50 ? 0 : kSizes[encoding & 7];
}

CommonPart readCommonPart(Reader reader) noexcept {
    CommonPart part;
    reader.take(8);  // length and mark
    const auto version = reader.read<std::uint8_t>();
    std::array<char, 5> letters{};
    std::size_t count = 0;
    while (const char letter = reader.read<char>()) {
        if (count == letters.size()) return part;
        letters[count++] = letter;
    }
    part.codeUnit = reader.readUnsigned();
    part.dataUnit = reader.readSigned();
    const std::uint64_t returnAddress =
        version == 1 ? reader.read<std::uint8_t>() : reader.readUnsigned();
    if ((version != 1 && version != 3) || returnAddress != kReturnAddress || letters[0] != 'z')
        return part;
    Reader details = reader.take(reader.readUnsigned());
    bool isRelative = false;
    for (std::size_t i = 1; i < count; ++i) {
        if (letters[i] == 'R') {
            isRelative = details.read<unsigned char>() == kRelativeWord;
        } else if (letters[i] == 'L') {
            details.read<unsigned char>();
        } else if (letters[i] == 'P') {
            const std::size_t size = sizeOfEncoded(details.read<unsigned char>());
            if (size == 0) return part;
            details.take(size);
        } else if (letters[i] != 'B' || !kSignsReturnAddresses) {
            return part;  // a signal's frame among others. B is the second key of signatures.
        }
    }
    part.program = reader;
    part.isUsable = isRelative && details.isSound();
    return part;
}

// Runs the programs that describe a function row by row, up to the row of one address.
class Machine {
public:
    Machine(const CommonPart& part, std::uintptr_t begin, std::uintptr_t address) noexcept
        : m_part(part), m_location(begin), m_address(address) {}

    // False when the program does not end well or has an instruction that is not known.
    bool run(Reader program) noexcept {
        while (m_isKnown && !program.isAtEnd() && m_location <= m_address)
            step(program, program.read<std::uint8_t>());
        return m_isKnown && program.isSound();
    }

    void keepAsInitial() noexcept { m_initial = m_rule; }
    const UnwindRule& rule() const noexcept { return m_rule; }

private:
    using Rule = UnwindRule;

    // A row ends where the location moves beyond the address.
    void advance(std::uint64_t units) noexcept {
        m_location += static_cast<std::uintptr_t>(units * m_part.codeUnit);
    }

    void defineCfa(std::uint64_t base, std::int64_t offset) noexcept {
        m_rule.cfa = base == kStackPointer   ? Rule::Cfa::StackPointer
                     : base == kFramePointer ? Rule::Cfa::FramePointer
                                             : Rule::Cfa::Unknown;
        m_rule.cfaOffset = static_cast<std::int32_t>(offset);
    }

    void saveAt(std::uint64_t index, std::int64_t offset) noexcept {
        if (index == kReturnAddress) {
            m_rule.caller = Rule::Caller::AtCfa;
            m_rule.callerOffset = static_cast<std::int32_t>(offset);
        }
        if (index == kFramePointer) {
            m_rule.framePointer = Rule::FramePointer::AtCfa;
            m_rule.framePointerOffset = static_cast<std::int32_t>(offset);
        }
    }

    void restore(std::uint64_t index) noexcept {
        if (index == kReturnAddress) {
            m_rule.caller = m_initial.caller;
            m_rule.callerOffset = m_initial.callerOffset;
        }
        if (index == kFramePointer) {
            m_rule.framePointer = m_initial.framePointer;
            m_rule.framePointerOffset = m_initial.framePointerOffset;
        }
    }

    void forget(std::uint64_t index, Rule::Caller caller,
                Rule::FramePointer framePointer) noexcept {
        if (index == kReturnAddress) m_rule.caller = caller;
        if (index == kFramePointer) m_rule.framePointer = framePointer;
    }

    void rememberState() noexcept {
        m_isKnown = m_depth < m_remembered.size();
        if (m_isKnown) m_remembered[m_depth++] = m_rule;
    }

    void restoreState() noexcept {
        m_isKnown = m_depth > 0;
        if (m_isKnown) m_rule = m_remembered[--m_depth];
    }

    // The one expression that compilers use, in functions that align their stack: the frame pointer
    // plus an offset, looked up or not.
    static bool readExpression(Reader expression, bool isLookedUp, std::int32_t& offset) noexcept {
        if (expression.read<std::uint8_t>() != kPlusBaseRegister + kFramePointer) return false;
        offset = static_cast<std::int32_t>(expression.readSigned());
        if (isLookedUp && expression.read<std::uint8_t>() != kLookUp) return false;
        return expression.isAtEnd() && expression.isSound();
    }

    void defineCfaByExpression(Reader expression) noexcept {
        m_rule.cfa = readExpression(expression, true, m_rule.cfaOffset) ? Rule::Cfa::AtFramePointer
                                                                        : Rule::Cfa::Unknown;
    }

    void saveByExpression(std::uint64_t index, Reader expression) noexcept {
        std::int32_t offset = 0;
        const bool isKnown = readExpression(expression, false, offset);
        forget(index, Rule::Caller::Unknown,
               isKnown ? Rule::FramePointer::AtFramePointer : Rule::FramePointer::Unknown);
        if (index == kFramePointer) m_rule.framePointerOffset = offset;
    }

    std::int64_t scaled(std::uint64_t units) const noexcept {
        return static_cast<std::int64_t>(units) * m_part.dataUnit;
    }

    void step(Reader& program, std::uint8_t code) noexcept {
        const std::uint64_t operand = code & 0x3FU;
        switch (static_cast<ShortInstruction>(code & 0xC0U)) {
            case ShortInstruction::Advance:
                advance(operand);
                break;
            case ShortInstruction::Offset:
                saveAt(operand, scaled(program.readUnsigned()));
                break;
            case ShortInstruction::Restore:
                restore(operand);
                break;
            default:
                stepLong(program, static_cast<Instruction>(code));
        }
    }

    void stepLong(Reader& program, Instruction instruction) noexcept {
        switch (instruction) {
            case Instruction::Nothing:
                break;
            case Instruction::Advance1:
                advance(program.read<std::uint8_t>());
                break;
            case Instruction::Advance2:
                advance(program.read<std::uint16_t>());
                break;
            case Instruction::Advance4:
                advance(program.read<std::uint32_t>());
                break;
            case Instruction::Offset: {
                const std::uint64_t index = program.readUnsigned();
                saveAt(index, scaled(program.readUnsigned()));
                break;
            }
            case Instruction::Restore:
                restore(program.readUnsigned());
                break;
            case Instruction::Undefined:
                forget(program.readUnsigned(), Rule::Caller::None, Rule::FramePointer::Same);
                break;
            case Instruction::SameValue:
                forget(program.readUnsigned(), Rule::Caller::Unknown, Rule::FramePointer::Same);
                break;
            case Instruction::RememberState:
                rememberState();
                break;
            case Instruction::RestoreState:
                restoreState();
                break;
            case Instruction::DefineCfa: {
                const std::uint64_t base = program.readUnsigned();
                defineCfa(base, static_cast<std::int64_t>(program.readUnsigned()));
                break;
            }
            case Instruction::DefineCfaRegister:
                defineCfa(program.readUnsigned(), m_rule.cfaOffset);
                break;
            case Instruction::DefineCfaOffset:
                m_rule.cfaOffset = static_cast<std::int32_t>(program.readUnsigned());
                break;
            case Instruction::DefineCfaExpression:
                defineCfaByExpression(program.take(program.readUnsigned()));
                break;
            case Instruction::Expression: {
                const std::uint64_t index = program.readUnsigned();
                saveByExpression(index, program.take(program.readUnsigned()));
                break;
            }
            case Instruction::SignReturnAddress:
                m_isKnown = kSignsReturnAddresses;
                m_rule.isSigned = !m_rule.isSigned;
                break;
            case Instruction::ArgumentsSize:  // says nothing about the frame
                program.readUnsigned();
                break;
            default:
                m_isKnown = false;
        }
    }

    const CommonPart& m_part;
    std::uintptr_t m_location;
    std::uintptr_t m_address;
    UnwindRule m_rule;
    UnwindRule m_initial;
    std::array<UnwindRule, 8> m_remembered;
    std::size_t m_depth = 0;
    bool m_isKnown = true;  // every instruction so far was understood
};

}  // namespace

UnwindTable::UnwindTable(const unsigned char* header) noexcept {
    constexpr unsigned char kForm[4] = {1, kRelativeWord, 0x03, 0x3B};
    if (header == nullptr || std::memcmp(header, kForm, sizeof kForm) != 0) return;
    m_header = header;
    m_count = readAt<std::uint32_t>(header + 8);
}

std::uint32_t UnwindTable::find(std::uintptr_t address) const noexcept {
    std::uint32_t first = 0;
    for (std::uint32_t left = m_count; left > 1;) {
        const std::uint32_t half = left / 2;
        if (isAtOrBelow(first + half, address)) first += half;
        left -= half;
    }
    return first;
}

UnwindDescription UnwindDescription::at(const unsigned char* description) noexcept {
    const auto length = readAt<std::uint32_t>(description);
    const unsigned char* const reference = description + 4;
    const unsigned char* const common = reference - readAt<std::uint32_t>(reference);
    const auto commonLength = readAt<std::uint32_t>(common);
    if (length > 0xFFFF || commonLength > 0xFFFF) return {};
    return {description, length + 4, common, commonLength + 4};
}

UnwindRule UnwindDescription::ruleAt(std::uintptr_t address,
                                     std::uintptr_t& function) const noexcept {
    UnwindRule unusable;
    if (own == nullptr) return unusable;
    const CommonPart part = readCommonPart({common, common + commonSize});
    if (!part.isUsable) return unusable;
    Reader reader(own, own + ownSize);
    reader.take(8);  // length and where the common part is
    const auto* const start = reader.at();
    function = reinterpret_cast<std::uintptr_t>(start) +
               static_cast<std::uintptr_t>(std::intptr_t{reader.read<std::int32_t>()});
    const auto size = reader.read<std::uint32_t>();
    reader.take(reader.readUnsigned());
    if (address < function || address - function >= size || !reader.isSound()) return unusable;

    Machine machine(part, function, address);
    if (!machine.run(part.program)) return unusable;
    machine.keepAsInitial();
    return machine.run(reader) ? machine.rule() : unusable;
}

}  // namespace veltra
