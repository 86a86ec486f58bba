// The work on groups of 16 pixels: finding runs and writing records. A BGRA group takes 64 bytes, a Y16A group 48.
#pragma once

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

/// Number of groups at the start of `src` that all are visible, or all clear, as asked for. At most `count`.
using RunLengthSignature = std::size_t(const std::uint8_t* src, std::size_t count, bool visible);
using RunLengthSlot = DispatchSlot<RunLengthSignature>;
extern RunLengthSlot BgraRunLength;
extern RunLengthSlot Y16ARunLength;

/// Writes the records of `count` groups. Source and destination may start at the same address.
using GroupSignature = void(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);
using GroupSlot = DispatchSlot<GroupSignature>;
extern GroupSlot TitleToGroups;       ///< Premultiplied BGRA; chroma out of range keeps its low eight bits.
extern GroupSlot TitleToCableGroups;  ///< The same with clamped chroma.
extern GroupSlot BgraToGroups;        ///< BGRA, multiplied by alpha on the way.
extern GroupSlot Y16AToGroups;        ///< Y16A, multiplied by alpha on the way.

}  // namespace KorvaneSoftware
