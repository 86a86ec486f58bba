#!/usr/bin/env python3
"""What the Python package costs beside the library: time of a call, and frames of two threads against one.

usage: PYTHONPATH=python PIXMORPH_LIBRARY=build/release/libpixmorph.so bench/python_layer.py
"""
import threading
import time
import timeit

import numpy as np

import pixmorph
from pixmorph import Picture


def microseconds(function, repeats=30, calls=1000):
    """Processor time of a call, the least of many repetitions."""
    return min(timeit.repeat(function, number=calls, repeat=repeats, timer=time.thread_time)) / calls * 1e6


def call_costs():
    """A picture of 16 by 2, where the call is nearly all there is."""
    source, result = np.zeros((2, 16, 2), np.uint8), np.zeros((2, 16, 4), np.uint8)
    converter = pixmorph.Converter()
    held, target = Picture(source, "UYVY"), Picture(result)
    bare = converter._call
    arguments = (converter._pointer, target._pointers, target._strides, held._pointers, held._strides, 16, 2, 8, 0)
    print(f"ctypes call alone                {microseconds(lambda: bare(*arguments)):6.2f} us")
    print(f"convert, Picture objects kept    {microseconds(lambda: converter.convert(held, out=target)):6.2f} us")
    print(f"convert, arrays                  "
          f"{microseconds(lambda: converter.convert(source, 'BGRA', result, 'UYVY')):6.2f} us")
    print(f"pixmorph.convert, arrays         "
          f"{microseconds(lambda: pixmorph.convert(source, 'BGRA', result, 'UYVY')):6.2f} us")


def able_to_run():
    """Nanoseconds in which this thread ran or waited for a processor."""
    with open("/proc/thread-self/schedstat", encoding="ascii") as numbers:
        running, waiting, _ = numbers.read().split()
    return int(running) + int(waiting)


def frames_per_second(thread_count, seconds=0.4):
    """HD frames that so many threads convert, each with pictures of its own, and the least share of the time in which
    one
    of them could run: what is missing to 1 it waited for the other."""
    counts, shares = [0] * thread_count, [0.0] * thread_count
    start = threading.Barrier(thread_count)

    def work(index):
        converter = pixmorph.Converter()
        source = Picture(np.full((1080, 1920, 2), 100, np.uint8), "UYVY_BT709")
        result = Picture.new("BGRA", 1920, 1080)
        converter.convert(source, out=result)
        start.wait()
        begin, able = time.monotonic_ns(), able_to_run()
        while time.monotonic_ns() < begin + seconds * 1e9:
            converter.convert(source, out=result)
            counts[index] += 1
        shares[index] = (able_to_run() - able) / (time.monotonic_ns() - begin)

    threads = [threading.Thread(target=work, args=(index,)) for index in range(thread_count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return sum(counts) / seconds, min(shares)


def main():
    print(pixmorph.cpu_info())
    call_costs()
    rounds = [(frames_per_second(1), frames_per_second(2)) for _ in range(8)]
    (one, _), (two, share) = (max(values) for values in zip(*rounds))
    print(f"1080 lines, UYVY to BGRA: one thread {one:.0f} frames/s, two {two:.0f}, ratio {two / one:.2f};")
    print(f"of two threads each could run {share:.1%} of the time (the ratio needs a machine with nothing else to do)")


if __name__ == "__main__":
    main()
