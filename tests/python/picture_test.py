"""Which arrays and buffers a Picture takes, and where it finds their samples. No library is needed."""
import unittest

import numpy as np

from pixmorph import Format, Picture, PictureError, matrix, memory_bytes, tight_stride, value_range


def address(array):
    return array.__array_interface__["data"][0]


class Memory(unittest.TestCase):
    def test_bytes_of_pictures(self):
        # Worked out by hand.
        self.assertEqual(memory_bytes("IYUV", 1920, 1080), 3110400)
        self.assertEqual(memory_bytes("uyvy", 720, 576), 829440)
        self.assertEqual(memory_bytes("BGR", 3, 2), 18)
        self.assertEqual(memory_bytes("BGR", 3, 2, 12), 21)
        self.assertEqual(memory_bytes("P216", 4, 2), 32)
        self.assertEqual(memory_bytes("P016", 4, 2), 24)
        self.assertEqual(memory_bytes("Y16A", 32, 2), 192)
        self.assertEqual(memory_bytes("IYUV", 5, 3), 6 * 4 + 3 * 2 * 2)
        self.assertEqual(memory_bytes("IMC4", 8, 4, 16), 16 * 4 + 8 + 16 + 4)
        self.assertEqual(tight_stride("BGR", 3), 9)
        with self.assertRaisesRegex(PictureError, "too short"):
            memory_bytes("UYVY", 4, 2, 7)
        with self.assertRaises(PictureError):
            memory_bytes("UYVY", 0, 2)

    def test_planes_follow_each_other(self):
        memory = np.zeros(4096, np.uint8)
        iyuv = Picture(memory.data, "IYUV", (8, 6), stride=16)
        self.assertEqual([address(plane) - address(memory) for plane in iyuv.planes], [0, 96, 120])
        self.assertEqual([plane.strides for plane in iyuv.planes], [(16, 1), (8, 1), (8, 1)])
        imc = Picture(memory.data, "IMC2", (8, 6), stride=16)
        self.assertEqual([address(plane) - address(memory) for plane in imc.planes], [0, 96, 104])
        nv12 = Picture(memory.data, "NV12", (8, 6))
        self.assertEqual([plane.shape for plane in nv12.planes], [(6, 8), (3, 4, 2)])
        p216 = Picture(memory.data, "P216", (8, 6))
        self.assertEqual([(plane.shape, plane.dtype.name) for plane in p216.planes],
                         [((6, 8), "uint16"), ((6, 4, 2), "uint16")])


class Arrays(unittest.TestCase):
    def test_formats_that_arrays_tell(self):
        self.assertIs(Picture(np.zeros((4, 6, 3), np.uint8)).format, Format.BGR)
        self.assertIs(Picture(np.zeros((4, 6, 4), np.uint8)).format, Format.BGRA)
        self.assertEqual(Picture(np.zeros((4, 6, 2), np.uint8), "YUY2").size, (6, 4))
        self.assertEqual(Picture(np.zeros((4, 12), np.uint8), "YUY2").size, (6, 4))
        self.assertEqual(Picture(np.zeros((4, 96), np.uint8), "Y16A").size, (32, 4))
        self.assertEqual(Picture(np.zeros((6, 8), np.uint8), "NV12").size, (8, 4))
        self.assertEqual(Picture(np.zeros((8, 8), np.uint8), "Y422").size, (8, 4))
        self.assertEqual(Picture(np.zeros((6, 8), np.uint16), "P420").size, (8, 4))
        planes = (np.zeros((4, 8), np.uint8), np.zeros((2, 4), np.uint8), np.zeros((2, 4), np.uint8))
        self.assertEqual(Picture(planes, "IYUV").size, (8, 4))

    def test_no_memory_is_copied(self):
        frame = np.zeros((8, 16, 4), np.uint8)
        for view in (frame, frame[::-1], frame[1::2], frame[2:6, 4:12]):
            picture = Picture(view)
            self.assertEqual(address(picture.array), address(view))
            self.assertEqual(picture.array.strides, view.strides)
        data = bytes(range(64))
        self.assertTrue(np.shares_memory(Picture(data, "UYVY", (8, 4)).array, np.frombuffer(data, np.uint8)))
        self.assertFalse(Picture(data, "UYVY", (8, 4)).writable)
        self.assertTrue(Picture(bytearray(64), "UYVY", (8, 4)).writable)

    def test_memory_that_starts_with_the_bottom_line(self):
        data = bytes(range(24))
        picture = Picture(data, "BGR", (2, 3), stride=-8)
        self.assertEqual(picture.array.strides[0], -8)
        self.assertEqual(picture.tobytes(), data[16:22] + data[8:14] + data[0:6])

    def test_crops_and_flips(self):
        iyuv = Picture.new("IYUV", 16, 8)
        for index, plane in enumerate(iyuv.planes):
            plane[:] = np.arange(plane.size).reshape(plane.shape) + 64 * index
        part = iyuv.crop(4, 2, 8, 4)
        np.testing.assert_array_equal(part.planes[0], iyuv.planes[0][2:6, 4:12])
        np.testing.assert_array_equal(part.planes[2], iyuv.planes[2][1:3, 2:6])
        np.testing.assert_array_equal(iyuv.flipped().planes[1], iyuv.planes[1][::-1])
        nv12 = Picture.new("NV12", 16, 8)
        self.assertEqual(address(nv12.crop(4, 2, 8, 4).planes[1]), address(nv12.planes[1]) + 16 + 4)
        blocks = Picture.new("Y16", 48, 2)
        self.assertEqual(address(blocks.crop(16, 1, 32, 1).array), address(blocks.array) + 96 + 32)
        bgr = Picture.new("BGR", 5, 3)
        self.assertEqual(address(bgr.crop(1, 2, 3, 1).array), address(bgr.array) + 30 + 3)
        for bad in ((1, 0, 8, 4), (0, 1, 8, 4), (0, 0, 7, 4), (0, 0, 8, 3), (10, 0, 8, 4), (0, 6, 8, 4), (-2, 0, 8, 4)):
            with self.assertRaises(PictureError):
                iyuv.crop(*bad)

    def test_what_is_refused(self):
        cases = [
            (lambda: Picture(np.zeros((4, 6, 2), np.uint8)), "needs a format"),
            (lambda: Picture(np.zeros((4, 6), np.uint8)), "needs a format"),
            (lambda: Picture(np.zeros((4, 6, 3), np.float32)), "uint8"),
            (lambda: Picture(np.zeros((4, 6, 3), np.int8)), "uint8"),
            (lambda: Picture(np.zeros((4, 6, 8), np.uint8)[:, :, ::2], "BGRA"), "follow each other"),
            (lambda: Picture(np.zeros((4, 12, 4), np.uint8)[:, ::2]), "follow each other"),
            (lambda: Picture(np.zeros((4, 6, 4), np.uint8)[:, ::-1]), "follow each other"),
            (lambda: Picture(np.zeros((4, 6, 4), np.uint8), "BGR"), "cannot have the shape"),
            (lambda: Picture(np.zeros((4, 6, 4), np.uint8), "UYVY"), "cannot have the shape"),
            (lambda: Picture(np.zeros((4, 5, 2), np.uint8), "UYVY"), "cannot have the shape"),
            (lambda: Picture(np.zeros((4, 6, 4), np.uint8), "BGRA", (4, 4)), "cannot have the shape"),
            (lambda: Picture(np.zeros((4, 30), np.uint8), "Y16"), "cannot have the shape"),
            (lambda: Picture(np.zeros((6, 16), np.uint8)[:, :8], "IYUV"), "pass its planes"),
            (lambda: Picture(np.zeros((5, 8), np.uint8), "NV12"), "do not hold the planes"),
            (lambda: Picture(np.zeros((6, 8), np.uint8)[::-1], "IYUV"), "pass its planes"),
            (lambda: Picture(np.zeros((0, 6, 3), np.uint8)), "cannot be 0 by 0"),
            (lambda: Picture((np.zeros((4, 8), np.uint8),), "IYUV"), "has 3 planes"),
            (lambda: Picture((np.zeros((4, 8), np.uint8), np.zeros((1, 4, 2), np.uint8)), "NV12"), "plane 1"),
            (lambda: Picture((np.zeros((4, 8), np.uint8), np.zeros((2, 3, 2), np.uint8)), "NV12"), "plane 1"),
            (lambda: Picture(b"1234", "UYVY", (4, 4)), "takes 32 bytes, there are 4"),
            (lambda: Picture(b"1234", "UYVY"), "a format and a size"),
            (lambda: Picture("text", "UYVY", (2, 1)), "not a buffer"),
            (lambda: Picture(bytes(64), "IYUV", (4, 4), stride=-4), "one plane"),
            (lambda: Picture(np.zeros((4, 6, 3), np.uint8), stride=18), "its own strides"),
            (lambda: Picture.new("IYUV", 4, 4).array, "see planes"),
            (lambda: Picture.new(99, 4, 4), "no picture format"),
        ]
        for make, reason in cases:
            with self.assertRaisesRegex(PictureError, reason):
                make()


class Formats(unittest.TestCase):
    def test_colours(self):
        self.assertEqual((matrix("UYVY_BT709"), value_range("UYVY_BT709")), ("bt709", "video"))
        self.assertEqual((matrix(Format.NV12_FULL), value_range(120)), ("bt601", "full"))
        self.assertEqual((matrix("BGRA"), value_range("BGRA")), (None, "full"))
        self.assertEqual([int(Format[name]) for name in ("UYVY", "IYUV_BT709", "P422_FULL", "Y32A_SECOND")],
                         [0, 43, 127, 13])
        self.assertEqual(len(Format), 47)


if __name__ == "__main__":
    unittest.main()
