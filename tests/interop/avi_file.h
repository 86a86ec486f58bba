// A video file as small as players take it: one stream of Motion-JPEG in RIFF chunks.
#pragma once

#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace interop {

class AviFile {
public:
    AviFile(std::uint32_t width, std::uint32_t height) : width_(width), height_(height) {}

    void Add(const std::vector<std::uint8_t>& frame) { frames_.push_back(frame); }

    void Write(const std::string& path) const {
        const auto count = static_cast<std::uint32_t>(frames_.size());
        Bytes main;
        Put(main, {40000, 0, 0, 0, count, 0, 1, 0, width_, height_, 0, 0, 0, 0});
        Bytes stream;
        Put(stream, "vids");
        Put(stream, "MJPG");
        Put(stream, {0, 0, 0, 1, 25, 0, count, 0, 0, 0, 0, height_ << 16 | width_});
        Bytes format;
        Put(format, {40, width_, height_, 1 | 24 << 16});
        Put(format, "MJPG");
        Put(format, {width_ * height_ * 3, 0, 0, 0, 0});
        const Bytes streamList = List("strl", {Chunk("strh", stream), Chunk("strf", format)});
        const Bytes headers = List("hdrl", {Chunk("avih", main), streamList});
        std::vector<Bytes> chunks;
        for (const Bytes& frame : frames_) chunks.push_back(Chunk("00dc", frame));
        const Bytes file = List("AVI ", {headers, List("movi", chunks)}, "RIFF");
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    }

private:
    using Bytes = std::vector<std::uint8_t>;

    static void Put(Bytes& to, std::string_view text) { to.insert(to.end(), text.begin(), text.end()); }
    static void Put(Bytes& to, std::initializer_list<std::uint32_t> words) {
        for (const std::uint32_t word : words)
            for (int shift = 0; shift < 32; shift += 8) to.push_back(static_cast<std::uint8_t>(word >> shift));
    }
    static Bytes Chunk(std::string_view id, const Bytes& payload) {
        Bytes chunk;
        Put(chunk, id);
        Put(chunk, {static_cast<std::uint32_t>(payload.size())});
        chunk.insert(chunk.end(), payload.begin(), payload.end());
        if (chunk.size() % 2 != 0) chunk.push_back(0);
        return chunk;
    }
    static Bytes List(std::string_view type, const std::vector<Bytes>& chunks, std::string_view id = "LIST") {
        Bytes payload;
        Put(payload, type);
        for (const Bytes& chunk : chunks) payload.insert(payload.end(), chunk.begin(), chunk.end());
        return Chunk(id, payload);
    }

    std::uint32_t width_;
    std::uint32_t height_;
    std::vector<Bytes> frames_;
};

}  // namespace interop
