"""The largest file of a camera, 4 GiB - 2, to a file, to a pipe and by sync, in little memory."""

import bench_of_cameras
import pieces_test


class LargestFileTest(pieces_test.Pieces):
    SIZE = (1 << 32) - 2

    def test_get_takes_little_memory(self):
        self.get_takes_little_memory()

    def test_sync_takes_little_memory(self):
        self.sync_takes_little_memory("--verify")


if __name__ == "__main__":
    bench_of_cameras.main()
