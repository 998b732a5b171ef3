/// @file
/// Compile-time checks of record layouts. The host was compiled by somebody else, so each record
/// states its size, its alignment and the offset of each of its fields next to its declaration.
#pragma once

#include <cstddef>

/// Checks size and alignment of a record, in bytes.
#define VIREON_SDK_RECORD(record, size, align)                               \
    static_assert(sizeof(record) == (size), "size of " #record " is wrong"); \
    static_assert(alignof(record) == (align), "alignment of " #record " is wrong")

/// Checks the offset of one field of a record, in bytes.
#define VIREON_SDK_FIELD(record, field, offset)                                         \
    static_assert(offsetof(record, field) == (offset), "offset of " #record "::" #field \
                                                       " is "                           \
                                                       "wrong")
