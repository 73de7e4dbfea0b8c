"""The largest file of a camera, 4 GiB - 2, to a file and to a pipe in little memory."""

import bench_of_cameras
import pieces_test


class LargestFileTest(pieces_test.Pieces):
    SIZE = (1 << 32) - 2

    def test_get_takes_little_memory(self):
        self.get_takes_little_memory()


if __name__ == "__main__":
    bench_of_cameras.main()
