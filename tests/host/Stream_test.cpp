#include "vel/io/Stream.hpp"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "TempDir.hpp"

namespace {

TEST(Stream, ADuplicateWritesAtTheSharedPositionAndClosesAlone) {
    testing_support::TempDir dir;
    const auto path = dir / "out.bin";
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(2, ::write(fd, "ab", 2));

    std::FILE* stream = vel::io::openDuplicateForWriting(fd);
    ASSERT_NE(nullptr, stream);
    EXPECT_NE(fd, ::fileno(stream));
    EXPECT_GE(std::fputs("cde", stream), 0);
    EXPECT_EQ(0, std::fclose(stream));

    // The original descriptor is still open and continues where the stream ended.
    EXPECT_EQ(5, ::lseek(fd, 0, SEEK_CUR));
    EXPECT_EQ(1, ::write(fd, "f", 1));
    EXPECT_EQ(0, ::close(fd));
    EXPECT_EQ("abcdef", testing_support::fileBytes(path));

    errno = 0;
    EXPECT_EQ(nullptr, vel::io::openDuplicateForWriting(fd)) << "a closed descriptor";
    EXPECT_EQ(EBADF, errno);
}

} // namespace
