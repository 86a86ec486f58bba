// Reading and writing of Y4M, the uncompressed video that every media tool can make and play: a text line with the
// stream's properties, then a line "FRAME" and the planes Y, U, V of each frame.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "picture.h"
#include "source.h"

namespace playout {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Opens a file, or takes standard input or output for "-". @throws Error
File OpenForReading(const std::string& path);
File OpenForWriting(const std::string& path);

class Y4mReader : public Source {
public:
    /// Reads the stream's header. @throws Error(EXIT_INPUT) for what is no Y4M or no format that the program takes.
    Y4mReader(File file, std::string name);

    const VideoFormat& Format() const override { return format_; }
    bool Read(Picture& picture) override;

private:
    std::string ReadLine();
    [[noreturn]] void Fail(const std::string& message) const;

    File file_;
    std::string name_;
    VideoFormat format_;
    std::uint64_t frames_ = 0;
};

class Y4mWriter {
public:
    Y4mWriter(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {}

    /// Writes a frame of IYUV or Y422; the first one writes the stream's header too. @throws Error(EXIT_OUTPUT)
    void Write(const Picture& picture, const VideoFormat& format);
    /// Makes sure that everything has reached the file. @throws Error(EXIT_OUTPUT)
    void Close();
    std::uint64_t Bytes() const { return bytes_; }

private:
    void Put(const void* data, std::size_t size);

    File file_;
    std::string name_;
    std::uint64_t bytes_ = 0;
    bool started_ = false;
};

}  // namespace playout
