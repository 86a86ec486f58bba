// What stands around the scans of a frame, byte by byte, and what a reader makes of frames that others have written.
#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "jpeg/standard_tables.h"
#include "unit/jpeg/kvmj_pictures.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

void Add(Bytes& to, std::initializer_list<int> bytes) {
    for (const int byte : bytes) to.push_back(static_cast<std::uint8_t>(byte));
}
void Add(Bytes& to, std::string_view text) { to.insert(to.end(), text.begin(), text.end()); }
void AddBig32(Bytes& to, std::size_t x) {
    for (const int shift : {24, 16, 8, 0}) to.push_back(static_cast<std::uint8_t>(x >> shift));
}

EncodeCase FlatCase(std::int32_t width, std::int32_t height) {
    return {9, width, height, {0, 2 * width, "flat", 0, 0}, 0, 0, 8000};
}

// One MCU of one colour, both images: samples are Y 60, U 90, V 170.
TEST(KvmjLayout, FrameOfOneMcu) {
    CodedPicture picture(0, 16, 16, 32, 0, "flat");
    const KvmjFrame frame = EncodeKvmj(picture, FlatCase(16, 16), 2);
    // Levels of DC: 2 * -68, 2 * -38, 2 * 42. Luminance: size 8, 119; no difference. Chrominance: size 7, 51; size
    // 7, 84. 111110 01110111 1010, 00 1010, 1111110 0110011 00, 1111110 1010100 00.
    const Bytes scan = {0xF9, 0xDE, 0x8A, 0xFC, 0xCC, 0xFD, 0x50};
    const std::size_t size = 279 + scan.size() + 8 + 2;
    Bytes expected;
    for (const int polarity : {1, 2}) {
        Add(expected, {0xFF, 0xD8, 0xFF, 0xE0, 0, 16});
        Add(expected, "AVI1");
        Add(expected, {polarity, 0});
        AddBig32(expected, size);
        AddBig32(expected, size);
        Add(expected, {0xFF, 0xE1, 0, 24});
        Add(expected, "KVTH");
        Add(expected, {1, 0});
        Add(expected, {0, 0, 0, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0});
        Add(expected, {0xFF, 0xE1, 0, 14});
        Add(expected, "KVAR");
        Add(expected, {0, 0, 0, 0, 0, 0, 0, 0});
        Add(expected, {0xFF, 0xE1, 0, 42, 0, 0, 0, 0});
        Add(expected, "gpjm");
        for (const std::size_t offset : {size, size, polarity == 1 ? size : 0, std::size_t{112}, std::size_t{0},
                                         std::size_t{246}, std::size_t{265}, std::size_t{279}})
            AddBig32(expected, offset);
        Add(expected, {0xFF, 0xDD, 0, 4, 0, 0, 0xFF, 0xDB, 0, 132});
        km::QualityTables tables;
        km::MakeQualityTables(tables, 8000, km::DcRule::kAlwaysFour);
        for (const int table : {0, 1}) {
            Add(expected, {table});
            for (const std::uint8_t position : km::kZigZag)
                Add(expected, {(table == 0 ? tables.lumaQuantisers : tables.chromaQuantisers)[position]});
        }
        Add(expected, {0xFF, 0xC0, 0, 17, 8, 0, 8, 0, 16, 3, 1, 0x21, 0, 2, 0x11, 1, 3, 0x11, 1});
        Add(expected, {0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0x11, 3, 0x11, 0, 63, 0});
        expected.insert(expected.end(), scan.begin(), scan.end());
        expected.insert(expected.end(), 8, 0);
        Add(expected, {0xFF, 0xD9});
    }
    EXPECT_EQ(Bytes(frame.Data().begin(), frame.Data().end()), expected);
}

// One thread alone adds the remainder of the address where one would expect it to be filled up.
TEST(KvmjLayout, PaddingOfOneThread) {
    CodedPicture picture(0, 16, 16, 32, 0, "flat");
    for (const unsigned threads : {0u, 1u}) {
        const KvmjFrame frame = EncodeKvmj(picture, FlatCase(16, 16), threads);
        const std::size_t first = 279 + 7 + (279 + 7) % 4 + 16 + 2;
        const std::size_t second = 279 + 7 + (first + 279 + 7) % 4 + 16 + 2;
        EXPECT_EQ(frame.size, first + second);
    }
}

TEST(KvmjLayout, Parts) {
    struct Division {
        std::uint32_t width, height;
        unsigned parts;
        std::vector<int> starts;
    };
    for (const Division& d :
         {Division{16, 16, 1, {0}}, Division{16, 32, 2, {0, 1}}, Division{48, 80, 2, {0, 2}},
          Division{720, 480, 2, {0, 15}}, Division{720, 576, 2, {0, 18}}, Division{1024, 768, 4, {0, 12, 24, 36}},
          Division{1920, 1080, 8, {0, 8, 17, 25, 34, 42, 51, 59}}, Division{65520, 16, 6, {0, 0, 0, 0, 0, 0}}}) {
        km::FieldImageState image;
        km::DivideIntoParts(image, d.width, d.height);
        ASSERT_EQ(image.parts, d.parts) << d.width;
        unsigned rows = 0;
        for (unsigned i = 0; i < image.parts; ++i) {
            EXPECT_EQ(image.entries[i].firstRow, d.starts[i]) << d.width;
            EXPECT_EQ(image.entries[i].firstRow, rows);
            rows += image.entries[i].rows;
        }
        EXPECT_EQ(rows, (d.height + 15) / 16);
    }
}

// A JPEG of 16 by 8 with one MCU of grey, whose segments can be changed.
struct Jpeg {
    Bytes quantisers, huffman, restart, frame, scan, app;

    Jpeg() {
        Add(quantisers, {0xFF, 0xDB, 0, 132});
        for (const int table : {0, 1}) {
            Add(quantisers, {table});
            quantisers.insert(quantisers.end(), 64, 2);
        }
        frame = {0xFF, 0xC0, 0, 17, 8, 0, 8, 0, 16, 3, 1, 0x21, 0, 2, 0x11, 1, 3, 0x11, 1};
        scan = {0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0x11, 3, 0x11, 0, 63, 0, 0x28, 0xA0, 0x00};
    }
    Bytes All() const {
        Bytes all = {0xFF, 0xD8};
        for (const Bytes* part : {&app, &quantisers, &huffman, &restart, &frame, &scan})
            all.insert(all.end(), part->begin(), part->end());
        Add(all, {0xFF, 0xD9});
        return all;
    }
};

struct Parsed {
    km::Status status;
    km::FieldImageState state;
    std::int16_t luma[64] = {}, chroma[64] = {};
};

void Parse(const Bytes& bytes, Parsed& parsed) {
    km::CStreamReaderMJPG reader;
    parsed.state = {};
    parsed.state.lumaQuantisers = parsed.luma;
    parsed.state.chromaQuantisers = parsed.chroma;
    // In memory of exactly this size: the sanitizers see what is read behind it.
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    reader.ScanMarkers({exact.get(), bytes.size()});
    parsed.status = reader.ParseFieldImage(parsed.state, 0, {exact.get(), bytes.size()});
    if (parsed.state.scan != nullptr) parsed.state.scan = bytes.data() + (parsed.state.scan - exact.get());
}
km::Status StatusOf(const Jpeg& jpeg) {
    Parsed parsed;
    Parse(jpeg.All(), parsed);
    return parsed.status;
}

Bytes HuffmanSegment(const km::HuffmanTable& table, int id) {
    Bytes segment;
    Add(segment, {0xFF, 0xC4, 0, static_cast<int>(19 + table.symbols.size()), id});
    segment.insert(segment.end(), table.counts.begin(), table.counts.end());
    segment.insert(segment.end(), table.symbols.begin(), table.symbols.end());
    return segment;
}

TEST(KvmjLayout, PlainJpeg) {
    Jpeg jpeg;
    Parsed parsed;
    const Bytes bytes = jpeg.All();
    Parse(bytes, parsed);
    ASSERT_EQ(parsed.status, 0);
    EXPECT_EQ(parsed.state.width, 16u);
    EXPECT_EQ(parsed.state.height, 8u);
    EXPECT_EQ(parsed.state.components[0].vertical, 1);
    EXPECT_EQ(parsed.luma[63], 2);
    EXPECT_EQ(parsed.state.scan, bytes.data() + bytes.size() - 5);
    EXPECT_EQ(parsed.state.size, bytes.size());
}

TEST(KvmjLayout, Samplings) {
    for (const int sampling : {0x21, 0x22}) {
        Jpeg jpeg;
        jpeg.frame[11] = static_cast<std::uint8_t>(sampling);
        EXPECT_EQ(StatusOf(jpeg), 0);
    }
    for (const int sampling : {0x11, 0x12, 0x41, 0x20, 0x24}) {
        Jpeg jpeg;
        jpeg.frame[11] = static_cast<std::uint8_t>(sampling);
        EXPECT_EQ(StatusOf(jpeg), -8) << sampling;
    }
    Jpeg jpeg;
    jpeg.frame[14] = 0x12;  // 4:2:2 by other numbers.
    jpeg.frame[11] = 0x22;
    EXPECT_EQ(StatusOf(jpeg), -8);
}

TEST(KvmjLayout, WhatIsRefused) {
    for (const int marker : {0xC1, 0xC2, 0xC3, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0xCD, 0xCE, 0xCF}) {
        Jpeg jpeg;
        jpeg.frame[1] = static_cast<std::uint8_t>(marker);
        EXPECT_EQ(StatusOf(jpeg), -8) << marker;
    }
    for (const int marker : {0xCB, 0xCC}) {
        Jpeg jpeg;
        Add(jpeg.app, {0xFF, marker, 0, 4, 1, 2});
        EXPECT_EQ(StatusOf(jpeg), 0) << marker;
    }
    Jpeg jpeg;
    jpeg.frame[4] = 12;
    EXPECT_EQ(StatusOf(jpeg), -8);
    jpeg = {};
    jpeg.frame[9] = 1;
    EXPECT_EQ(StatusOf(jpeg), -8);
    jpeg = {};
    jpeg.frame[3] = 14;  // Three components in room for two.
    EXPECT_EQ(StatusOf(jpeg), -17);
    jpeg = {};
    jpeg.restart = {0xFF, 0xDD, 0, 4, 0, 4};
    EXPECT_EQ(StatusOf(jpeg), -8);
    jpeg.restart[5] = 0;
    EXPECT_EQ(StatusOf(jpeg), 0);
    jpeg = {};
    jpeg.frame.clear();
    EXPECT_EQ(StatusOf(jpeg), -1);
    jpeg = {};
    jpeg.scan.clear();
    EXPECT_EQ(StatusOf(jpeg), -1);
    jpeg = {};
    jpeg.quantisers.clear();
    EXPECT_EQ(StatusOf(jpeg), -1);
    jpeg = {};
    jpeg.quantisers[4] = 0x10;  // 16-bit entries.
    EXPECT_EQ(StatusOf(jpeg), -1);
}

TEST(KvmjLayout, HuffmanTables) {
    const std::pair<km::HuffmanTable, int> kTables[] = {
        {km::kLumaDcTable, 0x00}, {km::kLumaAcTable, 0x10}, {km::kChromaDcTable, 0x01}, {km::kChromaAcTable, 0x11}};
    Jpeg all;
    for (const auto& [table, id] : kTables) {
        const Bytes segment = HuffmanSegment(table, id);
        all.huffman.insert(all.huffman.end(), segment.begin(), segment.end());
        for (const std::size_t at : {5, 20, 25}) {
            Jpeg jpeg;
            jpeg.huffman = segment;
            jpeg.huffman[at] ^= 1;
            EXPECT_EQ(StatusOf(jpeg), -8) << id << ", " << at;
        }
        Jpeg other;
        other.huffman = segment;
        other.huffman[4] ^= 1;  // The table of the other components.
        EXPECT_EQ(StatusOf(other), -8);
    }
    EXPECT_EQ(StatusOf(all), 0);
    Jpeg empty;
    Add(empty.huffman, {0xFF, 0xC4, 0, 18, 0, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9});
    EXPECT_EQ(StatusOf(empty), 0);
}

// What is missing is that of Annex K, halved and rounded up.
TEST(KvmjLayout, MissingQuantisers) {
    Jpeg jpeg;
    Parsed parsed;
    jpeg.quantisers.resize(69);
    jpeg.quantisers[3] = 67;
    Parse(jpeg.All(), parsed);
    EXPECT_EQ(parsed.status, 0);
    EXPECT_EQ(parsed.luma[0], 2);
    EXPECT_EQ(parsed.chroma[0], 9);
    EXPECT_EQ(parsed.chroma[3], 24);
    jpeg.quantisers[4] = 3;  // Any number but 0 is chrominance.
    Parse(jpeg.All(), parsed);
    EXPECT_EQ(parsed.luma[0], 8);
    EXPECT_EQ(parsed.luma[63], 50);
    EXPECT_EQ(parsed.chroma[0], 2);
}

TEST(KvmjLayout, Segments) {
    Jpeg jpeg;
    Add(jpeg.app, {0xFF, 0xE0, 0, 16});
    Add(jpeg.app, "AVI1");
    Add(jpeg.app, {2, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    Parsed parsed;
    Parse(jpeg.All(), parsed);
    EXPECT_EQ(parsed.state.polarityIndex, 0);  // Without a field size it is the place in the frame.
    jpeg.app[13] = 1;
    Parse(jpeg.All(), parsed);
    EXPECT_EQ(parsed.state.polarityIndex, 1);
    jpeg.app[8] = 0;
    Parse(jpeg.All(), parsed);
    EXPECT_EQ(parsed.state.polarityIndex, -1);

    jpeg.app.clear();
    Add(jpeg.app, {0xFF, 0xE1, 0, 14});
    Add(jpeg.app, "KVAR");
    Add(jpeg.app, {16, 1, 0, 0, 9, 0, 0, 0});
    Parse(jpeg.All(), parsed);
    EXPECT_EQ(parsed.state.aspectX, 272);
    EXPECT_EQ(parsed.state.aspectY, 9);

    // Ten records are said to be there: eight count, or as many as the segment holds.
    for (const int present : {9, 3, 0}) {
        jpeg.app.clear();
        Add(jpeg.app, {0xFF, 0xE1, 0, 8 + 16 * present});
        Add(jpeg.app, "KVTH");
        Add(jpeg.app, {10, 0});
        for (int i = 0; i < present; ++i) Add(jpeg.app, {i, 1, 0, 0, 5, 0, 254, 255, 3, 0, 4, 0, i, 0, 2, 0});
        parsed.state.parts = 0;
        Parse(jpeg.All(), parsed);
        EXPECT_EQ(parsed.status, 0);
        ASSERT_EQ(parsed.state.parts, static_cast<unsigned>(std::min(present, 8)));
        if (present == 0) continue;
        const km::EntryPoint& entry = parsed.state.entries[2];
        EXPECT_EQ(entry.offset, 258u);
        EXPECT_EQ(entry.freeBits, 5);
        EXPECT_EQ(entry.predictors[0], -2);
        EXPECT_EQ(entry.predictors[2], 4);
        EXPECT_EQ(entry.firstRow, 2);
        EXPECT_EQ(entry.rows, 2);
    }
}

std::vector<std::pair<unsigned, unsigned>> MarkersOf(const Bytes& bytes) {
    km::CStreamReaderMJPG reader;
    reader.ScanMarkers(bytes);
    std::vector<std::pair<unsigned, unsigned>> markers;
    for (const km::MarkerRecord& record : reader.Markers()) markers.emplace_back(record.marker, record.offset);
    return markers;
}

TEST(KvmjLayout, ScanEndsAtTheNextMarker) {
    // Stuffed bytes and restart markers belong to the scan.
    const Bytes bytes = {0xFF, 0xD8, 0xFF, 0xDA, 0, 4, 1, 2, 0xFF, 0, 0xFF, 0xD3, 5, 0xFF, 0, 0xFF, 0xD9};
    const std::vector<std::pair<unsigned, unsigned>> expected = {{0xFFD8, 0}, {0xFFDA, 2}, {0xFFD9, 15}};
    EXPECT_EQ(MarkersOf(bytes), expected);
}

// A field size that leads to a marker, counted from behind the length word of SOS, takes the place of the search.
TEST(KvmjLayout, FieldSizeSkipsTheScan) {
    for (const bool mjpg : {false, true}) {
        Bytes bytes = {0xFF, 0xD8};
        if (mjpg) {
            Add(bytes, {0xFF, 0xE1, 0, 16, 0, 0, 0, 0});
            Add(bytes, "mjpg");
            Add(bytes, {0, 0, 0, 60, 0, 0});
        } else {
            Add(bytes, {0xFF, 0xE0, 0, 16});
            Add(bytes, "AVI1");
            Add(bytes, {1, 0, 0, 0, 0, 60, 0, 0, 0, 0});
        }
        const std::size_t scan = bytes.size();
        Add(bytes, {0xFF, 0xDA, 0, 4, 1, 2, 0xFF, 0xD9});
        bytes.resize(scan + 4 + 60);
        bytes[60] = 0xFF;
        bytes[61] = 0xFE;
        bytes[62] = 0;
        bytes[63] = 100;
        const std::vector<std::pair<unsigned, unsigned>> found = {
            {0xFFD8, 0}, {mjpg ? 0xFFE1 : 0xFFE0, 2}, {0xFFDA, scan}};
        EXPECT_EQ(MarkersOf(bytes), found) << mjpg;
        bytes.push_back(0);  // The size leads nowhere: the EOI in the scan is found.
        EXPECT_EQ(MarkersOf(bytes).back(), (std::pair<unsigned, unsigned>{0xFFD9, scan + 6}));
    }
}

// A field size that leads back to where the walk has been does not make it go round.
TEST(KvmjLayout, WalksEnd) {
    Bytes bytes = {0xFF, 0xD8, 0xFF, 0xE0, 0, 16};
    Add(bytes, "AVI1");
    Add(bytes, {1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0xFF, 0xDA, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_LT(MarkersOf(bytes).size(), 20u);
    EXPECT_TRUE(MarkersOf({}).empty());
    EXPECT_TRUE(MarkersOf({0xFF}).empty());
    EXPECT_EQ(MarkersOf({0xFF, 0xD9}).size(), 1u);
    EXPECT_EQ(MarkersOf({0xFF, 0xDA, 0xFF}).size(), 1u);
    EXPECT_EQ(MarkersOf(Bytes(100000)).size(), 0u);
}

}  // namespace
}  // namespace pixmorph_test
