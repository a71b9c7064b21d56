#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The plain functions of veltra/processor from Python: sample_tools.py path/to/libveltra.so"""
import ctypes
import sys
from ctypes import c_bool, c_char_p, c_float, c_int8, c_int32, c_size_t, c_uint8, c_uint32, c_void_p

veltra = ctypes.CDLL(sys.argv[1])
to_float = ctypes.CFUNCTYPE(None, c_void_p, c_void_p, c_size_t, c_void_p)
from_float = ctypes.CFUNCTYPE(None, c_void_p, c_void_p, c_size_t, c_void_p)
for name, result, arguments in [
    ("GetConvertNToFloat", to_float, [c_int32, c_bool]),
    ("GetConvertFloatToN", from_float, [c_int32, c_bool]),
    ("SwapData", None, [c_void_p, c_void_p, ctypes.POINTER(c_int8), c_size_t]),
    ("SwapRecordWithin", c_bool, [c_void_p, c_size_t, c_void_p, c_size_t, ctypes.POINTER(c_size_t)]),
    ("QKCRC16", c_uint32, [c_char_p]),
    ("QKCRC32", c_uint32, [c_uint32, c_char_p, c_size_t]),
    ("utf8_strlcpy", c_void_p, [c_void_p, c_char_p, c_size_t]),
    ("utf8_strlen", c_size_t, [c_char_p]),
    ("utf8_check", ctypes.c_int, [c_char_p]),
    ("VLKernelFamilyCount", c_uint32, []),
    ("VLKernelFamilyName", c_char_p, [c_uint32]),
    ("VLKernelFamilyInForce", c_char_p, [c_char_p]),
    ("VLKernelFamilyUse", c_bool, [c_char_p, c_char_p]),
    ("VLDotAPIMenuEntries", c_uint32, []),
    ("VLDotAPIMenuText", c_char_p, [c_int32]),
    ("VLDotAPIGetSelection", c_int32, []),
]:
    function = getattr(veltra, name)
    function.restype, function.argtypes = result, arguments


def samples():
    stream = bytes([0x40, 0x00, 0xC0, 0x00, 0x00, 0x01])  # 16 bits, big-endian
    floats = (c_float * 3)()
    again = ctypes.create_string_buffer(len(stream))
    veltra.GetConvertNToFloat(2, False)(floats, stream, 3, None)
    print("samples:", *floats)
    veltra.GetConvertFloatToN(2, False)(again, floats, 3, None)
    return again.raw == stream


def records():
    fields = (c_int8 * 4)(4, 2, -3, 0)  # a 32-bit value, a 16-bit one, three bytes that stay
    codes = (c_uint8 * 3)(7, 15, 0)
    copy = ctypes.create_string_buffer(9)
    veltra.SwapData(copy, b"\x01\x02\x03\x04\x05\x06abc", fields, 9)
    record = ctypes.create_string_buffer(b"\x01\x02\x03\x04\x05\x06abc", 9)
    taken = c_size_t()
    whole = veltra.SwapRecordWithin(record, 9, codes, len(codes), taken)
    cut = veltra.SwapRecordWithin(record, 5, codes, len(codes), None)  # and the 32-bit value back
    veltra.SwapRecordWithin(record, 4, codes, len(codes), None)
    fields_end = taken.value
    return (copy.raw == record.raw == b"\x04\x03\x02\x01\x06\x05abc" and whole and not cut
            and fields_end == 6)


def checksums():
    in_pieces = veltra.QKCRC32(veltra.QKCRC32(0, b"1234", 4), b"56789", 5)
    print(f"CRC-32 {in_pieces:08x}, CRC-16 {veltra.QKCRC16(b'123456789'):04x}")
    return (in_pieces, veltra.QKCRC16(b"123456789")) == (0xCBF43926, 0xE5CC)


def names():
    field = ctypes.create_string_buffer(6)
    veltra.utf8_strlcpy(field, "Café ♪".encode(), len(field))
    print("name:", field.value.decode(), "plain at first:", veltra.utf8_strlen(field.value))
    return field.value.decode() == "Café" and veltra.utf8_check(b"\xC3") == 0


def kernels():
    families = [veltra.VLKernelFamilyName(i) for i in range(veltra.VLKernelFamilyCount())]
    best = {family: veltra.VLKernelFamilyInForce(family) for family in families}
    for family, variant in best.items():
        print(f"{family.decode()} runs as {variant.decode()}")
        veltra.VLKernelFamilyUse(family, b"plain")  # to compare, in a test or a bug report
    plain = checksums()
    for family in families:
        veltra.VLKernelFamilyUse(family, None)  # the best again
    return plain and best == {family: veltra.VLKernelFamilyInForce(family) for family in families}


def processor():
    for position in range(veltra.VLDotAPIMenuEntries()):
        mark = "x" if position == veltra.VLDotAPIGetSelection() else " "
        print(f"[{mark}] {veltra.VLDotAPIMenuText(position).decode()}")
    return not veltra.VLKernelFamilyUse(b"crc32", b"none")


checks = (samples, records, checksums, names, kernels, processor)
failed = [check.__name__ for check in checks if not check()]
sys.exit(f"not as expected: {', '.join(failed)}" if failed else 0)
