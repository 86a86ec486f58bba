#include "titles/title_runs.h"

#include <cstring>

#include "titles/group_kernels.h"

namespace KorvaneSoftware {

namespace {

std::int32_t ReadCell(const void* cell) {
    std::int32_t value;
    std::memcpy(&value, cell, sizeof(value));
    return value;
}

void WriteCell(void* cell, std::int32_t value) { std::memcpy(cell, &value, sizeof(value)); }

/// Appends runs to a stream. The open counter is kept here and stored when its run ends, so that nothing has been
/// written while only clear groups have come.
class CRunWriter {
public:
    explicit CRunWriter(const RunCursor& cursor) : cursor_(cursor), count_(ReadCell(cursor.cell)) {}

    /// @return whether there is room: a stream without a write position takes clear groups only.
    bool AddClear(std::size_t groups) {
        if (count_ > 0 && !OpenCell()) return false;
        count_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(count_) - static_cast<std::uint32_t>(groups));
        return true;
    }

    bool AddVisible(const GroupSlot& write, const std::uint8_t* src, std::size_t groups) {
        if (cursor_.position == nullptr) return false;
        if (count_ < 0) OpenCell();
        count_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(count_) + static_cast<std::uint32_t>(groups));
        write(cursor_.position, src, groups);
        cursor_.position += groups * kRecordBytes;
        return true;
    }

    RunCursor Finish() const {
        WriteCell(cursor_.cell, count_);
        return cursor_;
    }

private:
    bool OpenCell() {
        if (cursor_.position == nullptr) return false;
        WriteCell(cursor_.cell, count_);
        cursor_.cell = cursor_.position;
        cursor_.position += sizeof(std::int32_t);
        count_ = 0;
        return true;
    }

    RunCursor cursor_;
    std::int32_t count_;
};

Status Compress(RunCursor& cursor, const GroupRows& source, std::size_t groupBytes, const RunLengthSlot& runLength,
                const GroupSlot& write) noexcept {
    if (source.groups == 0 || source.rows == 0) return IMG_OK;
    if (source.first == nullptr || cursor.cell == nullptr) return IMG_E_NULL_ARG;
    return Guarded([&]() -> Status {
        CRunWriter writer(cursor);
        const std::uint8_t* row = source.first;
        for (std::uint64_t i = 0; i < source.rows; ++i, row += source.step) {
            const std::uint8_t* group = row;
            std::size_t left = source.groups;
            while (left > 0) {
                const std::size_t clear = runLength(group, left, false);
                if (clear > 0 && !writer.AddClear(clear)) return IMG_E_NULL_ARG;
                group += clear * groupBytes;
                left -= clear;
                if (left == 0) break;
                const std::size_t visible = runLength(group, left, true);
                if (!writer.AddVisible(write, group, visible)) return IMG_E_NULL_ARG;
                group += visible * groupBytes;
                left -= visible;
            }
        }
        cursor = writer.Finish();
        return IMG_OK;
    });
}

}  // namespace

Status CompressTitleRuns(RunCursor& cursor, const GroupRows& source) noexcept {
    return Compress(cursor, source, 64, BgraRunLength, TitleToGroups);
}

Status CompressBgraRuns(RunCursor& cursor, const GroupRows& source) noexcept {
    return Compress(cursor, source, 64, BgraRunLength, BgraToGroups);
}

Status CompressY16ARuns(RunCursor& cursor, const GroupRows& source) noexcept {
    return Compress(cursor, source, 48, Y16ARunLength, Y16AToGroups);
}

Status WriteTitleGroups(std::uint8_t* dst, std::int64_t dstStep, const GroupRows& source) noexcept {
    if (source.groups == 0 || source.rows == 0) return IMG_OK;
    if (dst == nullptr || source.first == nullptr) return IMG_E_NULL_ARG;
    return Guarded([&]() -> Status {
        for (std::uint64_t i = 0; i < source.rows; ++i)
            TitleToCableGroups(dst + static_cast<std::int64_t>(i) * dstStep,
                               source.first + static_cast<std::int64_t>(i) * source.step, source.groups);
        return IMG_OK;
    });
}

}  // namespace KorvaneSoftware
