// What the values of mb_type and sub_mb_type stand for, ITU-T H.264 Tables 7-11, 7-13, 7-14, 7-17 and 7-18.
#pragma once

#include <cstdint>

#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// H264MacroblockRecord::shape and subShapes.
enum H264Shape : std::uint8_t {
    SHAPE_WHOLE = 0,
    SHAPE_ROWS = 1,      ///< Two parts, one above the other: 16x8, 8x4.
    SHAPE_COLUMNS = 2,   ///< Two parts side by side: 8x16, 4x8.
    SHAPE_QUARTERS = 3,  ///< 8x8, 4x4.
    SHAPE_INTRA_4X4 = 6,
};

/// Intra types of Table 7-11: 0 I_NxN, 1 to 24 Intra_16x16, 25 I_PCM.
constexpr unsigned kH264IntraNxN = 0;
constexpr unsigned kH264IntraPcm = 25;
/// Intra16x16PredMode of types 1 to 24.
constexpr unsigned Intra16x16Mode(unsigned type) { return (type - 1) % 4; }
/// coded_block_pattern of types 1 to 24: luma in bits 0 to 3, chroma in bits 4 and 5.
constexpr unsigned Intra16x16Pattern(unsigned type) { return (type >= 13 ? 15 : 0) | (type - 1) / 4 % 3 << 4; }

/// An inter type: its parts, and the lists that each uses, bit 0 for list 0 and bit 1 for list 1.
struct H264InterType {
    H264Shape shape;
    std::uint8_t lists[2];

    bool Uses(unsigned part, unsigned list) const { return (lists[part] >> list & 1) != 0; }
};

/// Values of mb_type and sub_mb_type that are treated apart. Intra types follow the inter types of a slice.
constexpr unsigned kH264PTypeCount = 5;
constexpr unsigned kH264BTypeCount = 23;
constexpr unsigned kH264P8x8Ref0 = 4;
constexpr unsigned kH264BDirect = 0;

inline constexpr H264InterType kH264PTypes[kH264PTypeCount] = {
    {SHAPE_WHOLE, {1, 1}}, {SHAPE_ROWS, {1, 1}}, {SHAPE_COLUMNS, {1, 1}}, {SHAPE_QUARTERS, {}}, {SHAPE_QUARTERS, {}}};

/// The first is B_Direct_16x16.
inline constexpr H264InterType kH264BTypes[kH264BTypeCount] = {
    {SHAPE_QUARTERS, {}}, {SHAPE_WHOLE, {1, 1}},   {SHAPE_WHOLE, {2, 2}}, {SHAPE_WHOLE, {3, 3}},
    {SHAPE_ROWS, {1, 1}}, {SHAPE_COLUMNS, {1, 1}}, {SHAPE_ROWS, {2, 2}},  {SHAPE_COLUMNS, {2, 2}},
    {SHAPE_ROWS, {1, 2}}, {SHAPE_COLUMNS, {1, 2}}, {SHAPE_ROWS, {2, 1}},  {SHAPE_COLUMNS, {2, 1}},
    {SHAPE_ROWS, {1, 3}}, {SHAPE_COLUMNS, {1, 3}}, {SHAPE_ROWS, {2, 3}},  {SHAPE_COLUMNS, {2, 3}},
    {SHAPE_ROWS, {3, 1}}, {SHAPE_COLUMNS, {3, 1}}, {SHAPE_ROWS, {3, 2}},  {SHAPE_COLUMNS, {3, 2}},
    {SHAPE_ROWS, {3, 3}}, {SHAPE_COLUMNS, {3, 3}}, {SHAPE_QUARTERS, {}}};

struct H264SubType {
    H264Shape shape;
    std::uint8_t lists;

    bool IsDirect() const { return lists == 0; }
    bool Uses(unsigned list) const { return (lists >> list & 1) != 0; }
};

inline constexpr H264SubType kH264PSubTypes[4] = {
    {SHAPE_WHOLE, 1}, {SHAPE_ROWS, 1}, {SHAPE_COLUMNS, 1}, {SHAPE_QUARTERS, 1}};

/// The first is direct, whose shape prediction finds.
inline constexpr H264SubType kH264BSubTypes[13] = {
    {SHAPE_QUARTERS, 0}, {SHAPE_WHOLE, 1},    {SHAPE_WHOLE, 2},   {SHAPE_WHOLE, 3}, {SHAPE_ROWS, 1},
    {SHAPE_COLUMNS, 1},  {SHAPE_ROWS, 2},     {SHAPE_COLUMNS, 2}, {SHAPE_ROWS, 3},  {SHAPE_COLUMNS, 3},
    {SHAPE_QUARTERS, 1}, {SHAPE_QUARTERS, 2}, {SHAPE_QUARTERS, 3}};

/// The code of a shape in H264MacroblockRecord::mbType.
inline constexpr std::uint32_t kH264ShapeCodes[4] = {2, 4, 8, 12};

/// The 8x8 quarters that the parts of a shape cover, a bit for each.
inline constexpr std::uint8_t kH264QuartersOfPart[3][2] = {{15, 0}, {3, 12}, {5, 10}};

}  // namespace KorvaneSoftware
