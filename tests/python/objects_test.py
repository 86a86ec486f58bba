"""The objects of the package give the bytes of direct calls, and say why where they cannot."""
import ctypes
import gc
import threading
import time
import unittest

import direct
import numpy as np

import pixmorph
from pixmorph import Error, Format, Picture, PictureError

RANDOM = np.random.default_rng(20)


def able_to_run():
    """Nanoseconds in which this thread ran or waited for a processor."""
    with open("/proc/thread-self/schedstat", encoding="ascii") as numbers:
        running, waiting, _ = numbers.read().split()
    return int(running) + int(waiting)


def noise(*shape, dtype=np.uint8):
    return RANDOM.integers(0, 256, shape, dtype)


class Convert(unittest.TestCase):
    def test_gives_the_bytes_of_a_direct_call(self):
        frame = noise(8, 64, 2)
        source, result = direct.buffer(frame.tobytes()), direct.buffer(bytes(8 * 64 * 4))
        status = direct.color_conversion().call(3, direct.planes(result, 0), direct.strides(256),
                                                direct.planes(source, 0), direct.strides(128), 64, 8, 18, 14)
        self.assertEqual(status, 0)
        converted = pixmorph.convert(frame, to="BGRA", format="UYVY_BT709")
        self.assertEqual(converted.tobytes(), bytes(result))
        self.assertEqual(converted.array.shape, (8, 64, 4))

    def test_converts_planes_as_a_direct_call_does(self):
        iyuv = noise(12, 32)
        source, result = direct.buffer(iyuv.tobytes()), direct.buffer(bytes(8 * 32 * 3))
        status = direct.color_conversion().call(3, direct.planes(result, 0), direct.strides(96),
                                                direct.planes(source, 0, 256, 320), direct.strides(32, 16, 16),
                                                32, 8, 17, 11)
        self.assertEqual(status, 0)
        for picture in (Picture(iyuv, "IYUV"), Picture(iyuv.tobytes(), "IYUV", (32, 8)),
                        Picture((iyuv[:8], iyuv[8:10].reshape(4, 16), iyuv[10:].reshape(4, 16)), "iyuv")):
            self.assertEqual(pixmorph.convert(picture, "BGR").tobytes(), bytes(result))

    def test_takes_views_without_a_copy(self):
        frame = noise(16, 64, 2)
        padded = np.zeros((16, 80, 2), np.uint8)
        padded[:, 8:72] = frame
        straight = pixmorph.convert(frame, "BGRA", format="UYVY").array
        np.testing.assert_array_equal(pixmorph.convert(padded[:, 8:72], "BGRA", format="UYVY").array, straight)
        np.testing.assert_array_equal(pixmorph.convert(frame[::-1], "BGRA", format="UYVY").array, straight[::-1])
        # The field of every second line.
        np.testing.assert_array_equal(pixmorph.convert(frame[1::2], "BGRA", format="UYVY").array, straight[1::2])

    def test_writes_into_out_alone(self):
        frame = noise(4, 16, 2)
        canvas = np.full((8, 24, 4), 77, np.uint8)
        result = pixmorph.convert(frame, "BGRA", out=canvas[2:6, 4:20], format="UYVY")
        self.assertTrue(np.shares_memory(result.array, canvas))
        expected = np.full((8, 24, 4), 77, np.uint8)
        expected[2:6, 4:20] = pixmorph.convert(frame, "BGRA", format="UYVY").array
        np.testing.assert_array_equal(canvas, expected)
        upside_down = np.zeros((4, 16, 4), np.uint8)
        pixmorph.convert(frame, "BGRA", out=upside_down[::-1], format="UYVY")
        np.testing.assert_array_equal(upside_down[::-1], expected[2:6, 4:20])

    def test_every_pair_that_the_library_has(self):
        component, converter = direct.color_conversion(), pixmorph.Converter()
        for source in Format:
            for to in Format:
                there = component.call(5, int(to), int(source)) == 0
                self.assertEqual(converter.can_convert(source, to), there)

    def test_says_why_not(self):
        frame = noise(4, 16, 2)
        with self.assertRaisesRegex(Error, "Converter.convert: there is no path from UYVY to P422") as raised:
            pixmorph.convert(frame, "P422", format="UYVY")
        self.assertEqual(raised.exception.result, 0x80004005)
        with self.assertRaisesRegex(Error, "2 by 3 is no multiple of 2 by 2"):
            pixmorph.convert(noise(3, 2, 4), "IYUV")
        with self.assertRaisesRegex(PictureError, "different sizes"):
            pixmorph.convert(frame, "BGRA", out=np.zeros((4, 14, 4), np.uint8), format="UYVY")
        with self.assertRaisesRegex(PictureError, "read-only"):
            pixmorph.convert(frame, out=Picture(bytes(4 * 16 * 4), "BGRA", (16, 4)), format="UYVY")
        with self.assertRaisesRegex(PictureError, "there is no picture format 'RGBX'"):
            pixmorph.convert(frame, "RGBX", format="UYVY")


class Resize(unittest.TestCase):
    def test_gives_the_bytes_of_both_interfaces(self):
        frame = noise(32, 64, 2)
        source, result = direct.buffer(frame.tobytes()), direct.buffer(bytes(24 * 48 * 4))
        status = direct.resize_image().call(4, direct.planes(result, 0), direct.strides(192), direct.planes(source, 0),
                                            direct.strides(128), 48, 24, 64, 32, 18, 0)
        self.assertEqual(status, 0)
        self.assertEqual(pixmorph.resize(frame, (48, 24), to="BGRA", format="UYVY").tobytes(), bytes(result))

        iyuv = noise(48, 64)
        source, result = direct.buffer(iyuv.tobytes()), direct.buffer(bytes(24 * 48 * 3 // 2))
        status = direct.stretch_image().call(3, result, source, 48, 24, 64, 32, 48, 64, 11)
        self.assertEqual(status, 0)
        self.assertEqual(pixmorph.resize(Picture(iyuv, "IYUV"), (48, 24)).tobytes(), bytes(result))

    def test_says_why_not(self):
        iyuv = Picture(noise(48, 64), "IYUV")
        with self.assertRaisesRegex(PictureError, "one stride"):
            pixmorph.resize(iyuv, (48, 24), to="BGRA")
        with self.assertRaisesRegex(Error, "is not resized"):
            pixmorph.resize(Picture(noise(4, 64), "Y16"), (16, 4))
        with self.assertRaisesRegex(PictureError, "size is missing"):
            pixmorph.resize(iyuv)


class Titles(unittest.TestCase):
    def test_gives_the_bytes_of_direct_calls(self):
        text, plate, video = noise(8, 32, 4), noise(8, 32, 4), noise(8, 32, 2)
        mixer = direct.title_mixer()
        # The component counts lines of BGRA from the bottom.
        up = [direct.buffer(a[::-1].tobytes()) for a in (text, plate)]
        title, image = direct.buffer(bytes(1024)), direct.buffer(bytes(1024))
        frame = direct.buffer(video.tobytes())
        self.assertEqual(mixer.call(3, title, up[0], 32, 8, 128, 128, 200), 0)
        self.assertEqual(mixer.call(4, title, up[1], 32, 8, 128, 128, 255), 0)
        self.assertEqual(mixer.call(10, image, title, 32, 8, 128, 128, 8), 0)
        self.assertEqual(mixer.call(12, frame, image, 32, 8, 64, 128, 128, 14, 8), 0)
        stream = direct.buffer(bytes(4 + 16 * 52))
        counter = ctypes.c_void_p(ctypes.addressof(stream))
        write = ctypes.c_void_p(ctypes.addressof(stream) + 4)
        top = ctypes.c_void_p(ctypes.addressof(title) + 7 * 128)
        self.assertEqual(mixer.call(5, ctypes.byref(write), top, 32, 8, 2**32 - 128, ctypes.byref(counter)), 0)

        ours = pixmorph.TitleMixer()
        result = ours.begin(text, opacity=200)
        ours.add_beneath(plate, result)
        self.assertEqual(result.array[::-1].tobytes(), bytes(title))
        self.assertEqual(ours.compress_runs(result), bytes(stream)[: write.value - ctypes.addressof(stream)])
        overlay = ours.to_image(result)
        self.assertEqual(overlay.array[::-1].tobytes(), bytes(image))
        ours.overlay(overlay, Picture(video, "UYVY_BT709"), opacity=128)
        self.assertEqual(video.tobytes(), bytes(frame))

    def test_says_why_not(self):
        mixer = pixmorph.TitleMixer()
        layer = noise(8, 32, 4)
        with self.assertRaisesRegex(PictureError, "0 to 255"):
            mixer.begin(layer, opacity=256)
        with self.assertRaisesRegex(PictureError, "different sizes"):
            mixer.add_beneath(noise(8, 16, 4), layer)
        with self.assertRaisesRegex(PictureError, "not what the mixer does"):
            mixer.overlay(layer, layer)
        with self.assertRaisesRegex(PictureError, "multiple of 16"):
            mixer.compress_runs(noise(8, 24, 4))


class Deinterlace(unittest.TestCase):
    def test_lags_one_frame_and_gives_the_components_bytes(self):
        component, ours = direct.video_deinterlacer(), pixmorph.Deinterlacer(spatial_check=False)
        self.assertEqual(component.call(3, 2), 0)
        self.assertIsNone(ours.pull())
        for number in range(5):
            frame = noise(48, 64)
            memory = direct.buffer(frame.tobytes())
            self.assertEqual(component.call(4, direct.planes(memory, 0), direct.strides(64), 64, 32, 11, 6), 0)
            ours.push(Picture(frame, "IYUV"), top_field_first=False)
            for keep, name in enumerate(("top", "bottom", "first", "second")):
                result = ours.pull(keep=name)
                if number < 2:
                    self.assertIsNone(result)
                    continue
                expected = direct.buffer(bytes(48 * 64))
                self.assertEqual(component.call(5, direct.planes(expected, 0), direct.strides(64), 64, 32, 11, keep), 0)
                self.assertEqual(result.tobytes(), bytes(expected))
        ours.reset()
        self.assertIsNone(ours.pull())

    def test_says_why_not(self):
        ours = pixmorph.Deinterlacer()
        with self.assertRaisesRegex(Error, "keep is one of"):
            ours.pull(keep="both")
        for _ in range(3):
            ours.push(noise(8, 8, 2), format="UYVY")
        with self.assertRaises(Error) as raised:
            ours.pull()
        self.assertEqual(raised.exception.method, "Deinterlacer.pull")


class Codecs(unittest.TestCase):
    def test_give_the_bytes_of_direct_calls(self):
        picture = noise(32, 64, 4)
        up = direct.buffer(picture[::-1].tobytes())
        coded, size = direct.buffer(bytes(1 << 16)), ctypes.c_uint32()
        component = direct.video_encoder()
        self.assertEqual(component.call(3, 9, 64, 32), 0)
        self.assertEqual(component.call(4, 5000), 0)
        self.assertEqual(component.call(5, coded, 1 << 16, ctypes.byref(size), direct.planes(up, 0),
                                        direct.strides(256), 8), 0)
        expected = bytes(coded)[: size.value]
        encoder = pixmorph.Encoder("motion_jpeg", 64, 32, quality=5000)
        self.assertEqual(encoder.encode(picture), expected)
        room = bytearray(1 << 16)
        filled = encoder.encode(picture, out=room)
        self.assertEqual(bytes(filled), expected)
        self.assertEqual(room[: len(filled)], expected)

        component = direct.video_decoder()
        self.assertEqual(component.call(3, 9, 64, 32), 0)
        frame = direct.buffer(bytes(64 * 32 * 2))
        self.assertEqual(component.call(4, direct.planes(frame, 0), direct.strides(128), 0, coded, size.value), 0)
        decoder = pixmorph.Decoder(pixmorph.Codec.MOTION_JPEG, 64, 32)
        self.assertEqual(decoder.decode(expected).tobytes(), bytes(frame))
        out = np.zeros((32, 64, 2), np.uint8)
        decoder.decode(memoryview(expected), "UYVY", out)
        self.assertEqual(out.tobytes(), bytes(frame))

    def test_say_why_not(self):
        with self.assertRaisesRegex(Error, "Encoder: H264 has no encoder"):
            pixmorph.Encoder("h264", 64, 32)
        with self.assertRaisesRegex(Error, "DV does not take 64 by 32"):
            pixmorph.Encoder("dv", 64, 32)
        with self.assertRaisesRegex(Error, "there is no codec 'theora'"):
            pixmorph.Decoder("theora", 64, 32)
        encoder = pixmorph.Encoder("motion_jpeg", 64, 32)
        with self.assertRaisesRegex(PictureError, "is not of 64 by 32"):
            encoder.encode(noise(32, 32, 4))
        with self.assertRaises(Error):
            encoder.encode(noise(32, 64, 4), out=bytearray(16))
        with self.assertRaisesRegex(Error, "0 to 10000"):
            encoder.set_quality(-1)
        with self.assertRaisesRegex(Error, "Decoder.decode"):
            pixmorph.Decoder("motion_jpeg", 64, 32).decode(b"no frame at all")
        with self.assertRaisesRegex(Error, "empty"):
            pixmorph.Decoder("motion_jpeg", 64, 32).decode(b"")


class Objects(unittest.TestCase):
    def test_let_go_of_the_library(self):
        thread = threading.Thread(target=lambda: pixmorph.convert(noise(2, 2, 4), "BGR"))
        thread.start()
        thread.join()
        kept = [pixmorph.Converter(), pixmorph.Resizer(), pixmorph.TitleMixer(), pixmorph.Deinterlacer(),
                pixmorph.Encoder("motion_jpeg", 16, 16), pixmorph.Decoder("motion_jpeg", 16, 16)]
        self.assertFalse(direct.can_unload())
        del kept
        # What this thread has of its own goes as well.
        pixmorph.objects._own.__dict__.clear()
        gc.collect()
        self.assertTrue(direct.can_unload())

    def test_let_go_of_the_interpreters_lock(self):
        # Two threads that convert are at every moment running or waiting for a processor, however busy the machine is.
        # With the lock held during a call, one would wait for the other half of the time.
        shares = [0.0, 0.0]
        start = threading.Barrier(2)

        def work(index):
            converter = pixmorph.Converter()
            source, result = Picture(noise(1080, 1920, 2), "UYVY"), Picture.new("BGRA", 1920, 1080)
            start.wait()
            begin, able = time.monotonic_ns(), able_to_run()
            while time.monotonic_ns() < begin + 400_000_000:
                converter.convert(source, out=result)
            shares[index] = (able_to_run() - able) / (time.monotonic_ns() - begin)

        threads = [threading.Thread(target=work, args=(index,)) for index in range(2)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertGreater(min(shares), 0.95)


if __name__ == "__main__":
    unittest.main()
